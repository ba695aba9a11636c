#pragma once

#include "shell/MessageTarget.h"
#include "shell/PauseGate.h"
#include "shell/WindowMessages.h"
#include "support/desktop/BoxAnswers.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace thntfs::test {

struct SeenMessage {
    std::uint32_t Number;
    std::uintptr_t WParam = 0;
    std::uintptr_t LParam = 0;
    bool operator==(const SeenMessage&) const = default;
};
using SeenMessages = std::vector<SeenMessage>;

/// Takes messages and does with them what a test wants.
class TestTarget : public MessageTarget {
public:
    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override {
        Messages.push_back({message, wParam, lParam});
        return Handle ? Handle(message, wParam, lParam) : 0;
    }

    [[nodiscard]] std::size_t Count(std::uint32_t message) const {
        return static_cast<std::size_t>(
            std::count_if(Messages.begin(), Messages.end(),
                          [&](const SeenMessage& seen) { return seen.Number == message; }));
    }

    SeenMessages Messages; ///< that came, in their order
    std::function<std::intptr_t(std::uint32_t, std::uintptr_t, std::uintptr_t)> Handle;
};

/// The main frame as long as it lives.
class TestFrame : public TestTarget {
public:
    TestFrame() { SetMainWindow(this); }
    ~TestFrame() override { SetMainWindow(nullptr); }
};

/// A thread that does a piece of work. A test that has failed leaves it no pause to stand in.
class TestWorker {
public:
    explicit TestWorker(std::function<void()> work)
        : thread_([this, does = std::move(work)] {
            id_ = gettid();
            does();
            done_ = true;
        }) {}
    ~TestWorker() {
        WorkerGate().Open();
        Finishes();
    }
    TestWorker(const TestWorker&) = delete;
    TestWorker& operator=(const TestWorker&) = delete;

    [[nodiscard]] bool IsDone() const { return done_; }

    /// Runs events until the work is done.
    bool Finishes() {
        return WaitUntil([this] { return IsDone(); });
    }

    /// Waits, without running events, until the thread sleeps, as it does behind what it has sent.
    void AwaitSleep() const {
        char state = ' ';
        for (std::string name; state != 'S'; std::this_thread::yield()) {
            std::ifstream("/proc/self/task/" + std::to_string(id_) + "/stat") >> name >> name >> state;
        }
    }

private:
    std::atomic<bool> done_{false};
    std::atomic<pid_t> id_{0};
    std::jthread thread_;
};

} // namespace thntfs::test
