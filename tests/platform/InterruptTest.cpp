#include "platform/system/Interrupt.h"

#include "platform/files/File.h"
#include "platform/system/Terminal.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

namespace thntfs::test {

namespace {

std::atomic<std::uint32_t> runFlag{0};

bool DescriptorIsReadable() {
    pollfd wanted{InterruptDescriptor(), POLLIN, 0};
    return ::poll(&wanted, 1, 0) == 1;
}

void StopTwice(int first, int second) {
    for (int run = 0; run < 2; ++run) { // anew
        OnInterrupt(runFlag);
        runFlag = 1;
        if (WasInterrupted() || DescriptorIsReadable()) {
            std::exit(4);
        }
        (void)std::raise(first);
    }
    if (runFlag != 0 || !WasInterrupted() || !DescriptorIsReadable()) {
        std::exit(3);
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

/// Standard output on a pipe that nobody reads.
void WriteToClosedPipe() {
    std::array<int, 2> ends{};
    OnInterrupt(runFlag);
    if (::pipe(ends.data()) != 0 || ::dup2(ends[1], STDOUT_FILENO) < 0) {
        std::exit(3);
    }
    ::close(ends[0]);
    ::close(ends[1]);
    const std::array<std::uint8_t, 4> bytes{};
    std::exit(OpenStandardOutput()->Write(bytes) == kErrorBrokenPipe ? 7 : 4);
}

void ContinueWhenIgnored() {
    (void)std::signal(SIGHUP, SIG_IGN);
    OnInterrupt(runFlag);
    (void)std::raise(SIGHUP);
    std::exit(WasInterrupted() ? 3 : 7);
}

} // namespace

/// What ignores signals passes that on to what it starts.
class InterruptDeathTest : public testing::Test {
protected:
    InterruptDeathTest() {
        for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
            (void)std::signal(number, SIG_DFL);
        }
    }
};

TEST_F(InterruptDeathTest, FirstStopsTheJobAndSecondTheProgram) {
    EXPECT_EXIT(StopTwice(SIGINT, SIGINT), ::testing::KilledBySignal(SIGINT), "");
    EXPECT_EXIT(StopTwice(SIGTERM, SIGINT), ::testing::KilledBySignal(SIGINT), "");
    EXPECT_EXIT(StopTwice(SIGHUP, SIGTERM), ::testing::KilledBySignal(SIGTERM), "");
}

TEST_F(InterruptDeathTest, AnInterruptAtTheStartOfAJobIsNotLost) {
    EXPECT_EXIT(InterruptAtTheStart(), ::testing::ExitedWithCode(7), "");
}

TEST_F(InterruptDeathTest, BrokenPipeIsAnErrorAndIgnoredStaysIgnored) {
    EXPECT_EXIT(WriteToClosedPipe(), ::testing::ExitedWithCode(7), "");
    EXPECT_EXIT(ContinueWhenIgnored(), ::testing::ExitedWithCode(7), "");
}

TEST(TerminalTest, AnswersWithoutATerminal) {
    EXPECT_GT(TerminalColumns(), 0U);
    const double before = SecondsNow();
    EXPECT_GE(SecondsNow(), before);
}

} // namespace thntfs::test
