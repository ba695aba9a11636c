#include "platform/system/Interrupt.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>

namespace thntfs::test {

namespace {

std::atomic<std::uint32_t> runFlag{0};

/// Ends the program, which the test looks at.
void RequireOrExit(bool holds, int status) {
    if (!holds) {
        std::exit(status);
    }
}

bool DescriptorIsReadable() {
    pollfd wanted{InterruptDescriptor(), POLLIN, 0};
    return ::poll(&wanted, 1, 0) == 1;
}

void StopTwice(int first, int second) {
    for (int run = 0; run < 2; ++run) { // anew
        OnInterrupt(runFlag);
        runFlag = 1;
        RequireOrExit(!WasInterrupted() && !DescriptorIsReadable(), 4);
        (void)std::raise(first);
        RequireOrExit(runFlag == 0 && WasInterrupted() && DescriptorIsReadable(), 3);
    }
    (void)std::raise(second);
}

std::atomic<std::uint32_t>* guardedFlag = nullptr;

/// Lets the first write to the flag through, after an interrupt has come at just this moment.
void InterruptTheWrite(int /*signal*/) {
    ::mprotect(guardedFlag, sizeof *guardedFlag, PROT_READ | PROT_WRITE);
    (void)std::raise(SIGINT);
}

void InterruptAtTheStart() {
    void* page = ::mmap(nullptr, 1, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    guardedFlag = new (page) std::atomic<std::uint32_t>(0);
    OnInterrupt(*guardedFlag);
    (void)std::signal(SIGSEGV, InterruptTheWrite);
    ::mprotect(page, sizeof *guardedFlag, PROT_READ);
    SetUnlessInterrupted(*guardedFlag);
    std::exit(WasInterrupted() && *guardedFlag == 0 ? 7 : 3);
}

void ContinueWhenIgnored() {
    (void)std::signal(SIGHUP, SIG_IGN);
    OnInterrupt(runFlag);
    SetUnlessInterrupted(runFlag);
    (void)std::raise(SIGHUP);
    std::exit(WasInterrupted() || runFlag != 1 ? 3 : 7);
}

TEST(InterruptDeathTest, FirstStopsTheJobAndSecondTheProgram) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) { // what ignores signals passes that on
        (void)std::signal(number, SIG_DFL);
    }
    EXPECT_EXIT(StopTwice(SIGINT, SIGINT), testing::KilledBySignal(SIGINT), "");
    EXPECT_EXIT(StopTwice(SIGTERM, SIGINT), testing::KilledBySignal(SIGINT), "");
    EXPECT_EXIT(StopTwice(SIGHUP, SIGTERM), testing::KilledBySignal(SIGTERM), "");
    EXPECT_EXIT(InterruptAtTheStart(), testing::ExitedWithCode(7), "") << "it is not lost";
    EXPECT_EXIT(ContinueWhenIgnored(), testing::ExitedWithCode(7), "");
}

} // namespace

} // namespace thntfs::test
