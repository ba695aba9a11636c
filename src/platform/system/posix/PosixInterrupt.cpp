#include "platform/system/Interrupt.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace thntfs {

namespace {

constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<std::atomic<std::uint32_t>*> flagToClear{nullptr};
std::atomic<bool> interrupted{false};

static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free &&
              std::atomic<std::uint32_t>::is_always_lock_free);

/// The first interrupt's byte goes through it to whoever waits. Made once, as a handler may write at any
/// time.
struct WakeUpPipe {
    WakeUpPipe() {
        if (::pipe2(Ends.data(), O_NONBLOCK | O_CLOEXEC) != 0) {
            Ends = {-1, -1};
        }
    }
    std::array<int, 2> Ends{};
};

const WakeUpPipe& WakeUp() {
    static const WakeUpPipe pipe;
    return pipe;
}

std::atomic<int> wakeUpEnd{-1}; ///< to write to

void EmptyWakeUp() {
    char byte = 0;
    while (::read(WakeUp().Ends[0], &byte, 1) > 0) {
    }
}

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
    const int before = errno;
    [[maybe_unused]] const auto written = ::write(wakeUpEnd, "", 1);
    errno = before;
}

} // namespace

void OnInterrupt(std::atomic<std::uint32_t>& flag) {
    flagToClear = &flag;
    interrupted = false;
    wakeUpEnd = WakeUp().Ends[1];
    EmptyWakeUp();
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

int InterruptDescriptor() { return WakeUp().Ends[0]; }

} // namespace thntfs
