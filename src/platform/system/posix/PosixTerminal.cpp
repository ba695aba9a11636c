#include "platform/system/Terminal.h"

#include <chrono>
#include <sys/ioctl.h>
#include <unistd.h>

namespace thntfs {

namespace {

constexpr unsigned kDefaultColumns = 80;

int DescriptorOf(StandardStream stream) {
    switch (stream) {
    case StandardStream::Input:
        return STDIN_FILENO;
    case StandardStream::Output:
        return STDOUT_FILENO;
    case StandardStream::Error:
        break;
    }
    return STDERR_FILENO;
}

} // namespace

bool IsTerminal(StandardStream stream) { return ::isatty(DescriptorOf(stream)) == 1; }

unsigned TerminalColumns() {
    for (const int descriptor : {STDERR_FILENO, STDOUT_FILENO}) {
        winsize size{};
        if (::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
            return size.ws_col;
        }
    }
    return kDefaultColumns;
}

double SecondsNow() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace thntfs
