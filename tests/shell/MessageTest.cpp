#include "engine/EngineState.h"
#include "engine/Host.h"
#include "shell/DesktopHost.h"
#include "shell/ShellFixture.h"

#include <memory>
#include <stdexcept>

namespace thntfs::test {

namespace {

constexpr std::uint32_t kFirst = WM_APP + 1;
constexpr std::uint32_t kSecond = WM_APP + 2;
constexpr std::uint32_t kThird = WM_APP + 3;
constexpr WindowMessage<std::size_t, std::string&> kGreeting{kFirst};

TEST(MessageTest, SendsOfManyWorkersRunOneAtATimeAndGiveTheirResults) {
    constexpr std::uintptr_t kSends = 300;
    TestTarget target;
    std::vector<std::uintptr_t> seen(3, 0); // of each worker, how many came
    bool inside = false;
    int faults = 0;
    target.Handle = [&](std::uint32_t, std::uintptr_t worker, std::uintptr_t word) {
        auto& text = kGreeting.Second(word);
        faults += static_cast<int>(!OnInterfaceThread() || std::exchange(inside, true));
        faults += static_cast<int>(text != std::to_string(seen[worker]++));
        text += " handled";
        inside = false;
        return static_cast<std::intptr_t>(text.size());
    };
    std::atomic<int> wrongReplies = 0;
    const auto work = [&](std::uintptr_t worker) {
        for (std::uintptr_t i = 0; i < kSends; ++i) {
            std::string text = std::to_string(i);
            const std::string expected = text + " handled";
            const auto result = kGreeting.Send(&target, worker, text);
            wrongReplies += static_cast<int>(text != expected || result != std::ssize(expected));
        }
    };
    {
        TestWorker zero([&] { work(0); });
        TestWorker one([&] { work(1); });
        TestWorker two([&] { work(2); });
    }
    EXPECT_EQ(seen, (std::vector<std::uintptr_t>{kSends, kSends, kSends}));
    EXPECT_EQ(faults, 0);
    EXPECT_EQ(wrongReplies, 0);
}

TEST(MessageTest, PostedMessagesComeInTheirOrderBehindASentOne) {
    TestTarget target;
    PostWindowMessage(&target, kFirst);
    PostWindowMessage(&target, kSecond);
    TestWorker worker([&] {
        SendWindowMessage(&target, kThird);
        PostWindowMessage(&target, kFirst);
    });
    worker.AwaitSleep();
    EXPECT_TRUE(target.Numbers.empty()) << "nothing may run before the interface thread takes it up";
    EXPECT_TRUE(worker.Finishes());
    RunEvents();
    EXPECT_EQ(target.Numbers, (std::vector<std::uint32_t>{kThird, kFirst, kSecond, kFirst}));
}

TEST(MessageTest, SendsToSeveralTargetsKeepTheirOrder) {
    std::vector<int> order;
    TestTarget early;
    TestTarget late;
    early.Handle = [&](auto, auto, auto) { return order.push_back(1), 0; };
    late.Handle = [&](auto, auto, auto) { return order.push_back(2), 0; };
    TestWorker sendsFirst([&] { SendWindowMessage(&late, kFirst); });
    sendsFirst.AwaitSleep();
    TestWorker sendsSecond([&] { SendWindowMessage(&early, kFirst); });
    sendsSecond.AwaitSleep();
    EXPECT_TRUE(sendsFirst.Finishes() && sendsSecond.Finishes());
    EXPECT_EQ(order, (std::vector<int>{2, 1}));
}

TEST(MessageTest, WhatAHandlerThrowsArrivesAtTheSender) {
    TestTarget target;
    target.Handle = [](std::uint32_t message, auto, auto) -> std::intptr_t {
        if (message == kFirst) {
            throw CUserException{};
        }
        if (message == kSecond) {
            throw std::runtime_error("its text");
        }
        return 7;
    };
    bool caughtUserException = false;
    std::string text;
    std::intptr_t result = 0;
    TestWorker worker([&] {
        try {
            SendWindowMessage(&target, kFirst);
        } catch (const CUserException&) {
            caughtUserException = true;
        }
        try {
            SendWindowMessage(&target, kSecond);
        } catch (const std::exception& failure) {
            text = failure.what();
        }
        result = SendWindowMessage(&target, kThird);
    });
    EXPECT_TRUE(worker.Finishes());
    EXPECT_TRUE(caughtUserException);
    EXPECT_EQ(text, "its text");
    EXPECT_EQ(result, 7);
    EXPECT_THROW(SendWindowMessage(&target, kFirst), CUserException) << "on the interface thread";
}

TEST(MessageTest, AHandlerMaySendOnAndRunEvents) {
    TestTarget inner;
    inner.Handle = [](auto, std::uintptr_t word, auto) { return static_cast<std::intptr_t>(word) + 1; };
    TestTarget outer;
    std::atomic<bool> otherDone = false;
    outer.Handle = [&](auto, std::uintptr_t word, auto) {
        EXPECT_TRUE(WaitUntil([&] { return otherDone.load(); }))
            << "a send must get through to a handler's loop";
        return SendWindowMessage(&inner, kFirst, word + 10);
    };
    std::intptr_t result = 0;
    TestWorker worker([&] { result = SendWindowMessage(&outer, kFirst, 100); });
    worker.AwaitSleep();
    TestWorker other([&] {
        SendWindowMessage(&inner, kSecond);
        otherDone = true;
    });
    EXPECT_TRUE(worker.Finishes() && other.Finishes());
    EXPECT_EQ(result, 111);
    EXPECT_EQ(inner.Numbers, (std::vector<std::uint32_t>{kSecond, kFirst}));
}

TEST(MessageTest, ATargetThatGoesAwayReleasesItsSenders) {
    auto target = std::make_unique<TestTarget>();
    target->Handle = [](auto, auto, auto) { return 5; };
    PostWindowMessage(target.get(), kFirst);
    std::intptr_t result = -1;
    TestWorker worker([&] { result = SendWindowMessage(target.get(), kSecond); });
    worker.AwaitSleep();
    target.reset();
    EXPECT_TRUE(worker.Finishes());
    EXPECT_EQ(result, 0);
    EXPECT_EQ(SendWindowMessage(nullptr, kFirst), 0);
    PostWindowMessage(nullptr, kFirst);
    RunEvents();
}

TEST(DesktopHostTest, ProgressGoesOnWhenItsPercentChanges) {
    TestFrame frame;
    DesktopHost host;
    Engine.ProgressTotal = 1000;
    const auto run = [&] {
        for (Engine.ProgressDone = 10; Engine.ProgressDone <= 1000; ++Engine.ProgressDone) {
            host.JobProgress();
        }
    };
    run();
    EXPECT_EQ(frame.Count(WM_JOB_PROGRESS), 100U);
    Engine.ProgressDone = 1000;
    host.JobProgress();
    EXPECT_EQ(frame.Count(WM_JOB_PROGRESS), 100U);
    host.BeginProgress();
    host.JobProgress();
    EXPECT_EQ(frame.Count(WM_JOB_PROGRESS), 101U) << "a new bar knows nothing yet";

    Engine.ProgressDone = 9;
    host.JobProgress();
    host.JobProgress();
    EXPECT_EQ(frame.Count(WM_JOB_PROGRESS), 102U) << "the first percent of a large disk takes long";
    Engine.ProgressTotal = 0;
    EXPECT_EQ(ProgressPercent(), 0);
    Engine.ProgressDone = 0;
}

TEST(DesktopHostTest, ReportsGoToTheirReceivers) {
    TestFrame frame;
    TestTarget dialog;
    std::vector<std::uintptr_t> words;
    const auto keep = [&](auto, std::uintptr_t wParam, std::uintptr_t lParam) {
        words.insert(words.end(), {wParam, lParam});
        return 0;
    };
    frame.Handle = keep;
    dialog.Handle = keep;
    DesktopHost host;
    host.SearchPosition(1, 2);
    host.SetSearchDialog(&dialog);
    TestWorker worker([&] {
        host.SearchPosition(0x100000003, 0x200000004);
        host.PartitionFound(0x300000005);
        host.CopyPosition(0x400000006, 0x500000007);
    });
    EXPECT_TRUE(worker.Finishes());
    EXPECT_EQ(words, (std::vector<std::uintptr_t>{3, 4, 5, 0, 6, 7}));
    EXPECT_EQ(dialog.Numbers, (std::vector<std::uint32_t>{WM_SEARCH_POSITION, WM_PARTITION_FOUND}));
    EXPECT_EQ(frame.Numbers, std::vector<std::uint32_t>{WM_COPY_POSITION});
}

} // namespace

} // namespace thntfs::test
