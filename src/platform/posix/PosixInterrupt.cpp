#include "platform/Interrupt.h"

#include <array>
#include <csignal>

namespace thntfs {

namespace {

constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<std::atomic<std::uint32_t>*> flagToClear{nullptr};
std::atomic<bool> interrupted{false};

static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<std::uint32_t>::is_always_lock_free);

void SetAction(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

bool IsIgnored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void RestoreDefaults() {
    for (const int signal : kSignals) {
        if (!IsIgnored(signal)) {
            SetAction(signal, SIG_DFL);
        }
    }
}

/// Does only what a signal handler may do.
void HandleInterrupt(int /*signal*/) {
    interrupted = true;
    flagToClear.load()->store(0);
    RestoreDefaults();
}

} // namespace

void OnInterrupt(std::atomic<std::uint32_t>& flag) {
    flagToClear = &flag;
    interrupted = false;
    for (const int signal : kSignals) {
        if (!IsIgnored(signal)) {
            SetAction(signal, HandleInterrupt);
        }
    }
    SetAction(SIGPIPE, SIG_IGN);
    SetAction(SIGXFSZ, SIG_IGN);
}

bool WasInterrupted() { return interrupted; }

// Whoever comes second clears the flag: the handler, which notes the interrupt first, or this.
void SetUnlessInterrupted(std::atomic<std::uint32_t>& flag) {
    flag = 1;
    if (interrupted) {
        flag = 0;
    }
}

} // namespace thntfs
