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

TEST(MessageTest, EachSendOfManyWorkersGetsItsOwnReply) {
    TestTarget target;
    target.Handle = [](auto, std::uintptr_t number, std::uintptr_t word) {
        kGreeting.Second(word) += OnInterfaceThread() ? std::to_string(number) : "elsewhere";
        return static_cast<std::intptr_t>(number) + 1;
    };
    std::atomic<int> faults = 0;
    const auto work = [&] {
        for (std::size_t i = 0; i < 300; ++i) {
            std::string text = "number ";
            const auto result = kGreeting.Send(&target, i, text);
            faults +=
                static_cast<int>(text != "number " + std::to_string(i) || std::cmp_not_equal(result, i + 1));
        }
    };
    {
        TestWorker one(work);
        TestWorker other(work);
    }
    EXPECT_EQ(faults, 0);
    EXPECT_EQ(target.Count(kFirst), 600U);
}

TEST(MessageTest, SentOnesComeInTheirOrderToAnyTargetAndBeforeThePosted) {
    std::vector<std::uint32_t> order;
    TestTarget one;
    TestTarget other;
    one.Handle =
        other.Handle = [&](std::uint32_t message, auto, auto) { return order.push_back(message), 0; };
    PostWindowMessage(&one, kFirst);
    TestWorker sender([&] {
        SendWindowMessage(&other, kSecond);
        PostWindowMessage(&other, kSecond);
    });
    sender.AwaitSleep();
    TestWorker later([&] { SendWindowMessage(&one, kThird); });
    later.AwaitSleep();
    EXPECT_TRUE(order.empty()) << "nothing may run before the interface thread takes it up";
    EXPECT_TRUE(sender.Finishes() && later.Finishes());
    RunEvents();
    EXPECT_EQ(order, (std::vector<std::uint32_t>{kSecond, kThird, kFirst, kSecond}));
}

TEST(MessageTest, WhatAHandlerThrowsArrivesAtTheSender) {
    TestTarget target;
    target.Handle = [](std::uint32_t message, auto, auto) -> std::intptr_t {
        if (message == kFirst) {
            throw CUserException{};
        }
        throw std::runtime_error("its text");
    };
    const auto send = [&] {
        EXPECT_THROW(SendWindowMessage(&target, kFirst), CUserException);
        try {
            SendWindowMessage(&target, kSecond);
        } catch (const std::runtime_error& failure) {
            return std::string(failure.what());
        }
        return std::string();
    };
    std::string text;
    TestWorker worker([&] { text = send(); });
    EXPECT_TRUE(worker.Finishes());
    EXPECT_EQ(text, "its text");
    EXPECT_EQ(send(), "its text") << "on the interface thread";
}

TEST(MessageTest, AHandlerMaySendOnAndRunEvents) {
    TestTarget inner;
    inner.Handle = [](auto, std::uintptr_t word, auto) { return static_cast<std::intptr_t>(word) + 1; };
    TestTarget outer;
    std::atomic<bool> otherDone = false;
    outer.Handle = [&](auto, std::uintptr_t word, auto) {
        EXPECT_TRUE(WaitUntil([&] { return otherDone.load(); })) << "a send gets through to a handler's loop";
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
    EXPECT_EQ(inner.Messages, (SeenMessages{{kSecond}, {kFirst, 110}}));
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
    for (Engine.ProgressDone = 10; Engine.ProgressDone <= 1000; ++Engine.ProgressDone) {
        host.JobProgress();
    }
    EXPECT_EQ(frame.Count(WM_JOB_PROGRESS), 100U);
    Engine.ProgressDone = 1000;
    host.BeginProgress();
    host.JobProgress();
    EXPECT_EQ(frame.Count(WM_JOB_PROGRESS), 101U) << "a new bar knows nothing yet";
    Engine.ProgressDone = 9;
    EXPECT_EQ(ProgressPercent(), 0) << "rounded down";
    host.JobProgress();
    host.JobProgress();
    EXPECT_EQ(frame.Count(WM_JOB_PROGRESS), 102U) << "the first percent of a large disk takes long";
    Engine.ProgressTotal = 0;
    EXPECT_EQ(ProgressPercent(), 0);
}

TEST(DesktopHostTest, ReportsGoToTheirReceivers) {
    TestFrame frame;
    TestTarget dialog;
    DesktopHost host;
    host.SearchPosition(1, 2);
    TestWorker worker([&] {
        for (int search = 0; search < 2; ++search) {
            host.SetSearchDialog(&dialog);
            host.SearchPosition(0x100000003, 0x200000004);
            host.SearchPosition(0x100000003, 0x200000004);
        }
        host.PartitionFound(0x300000005);
        host.CopyPosition(0x400000006, 0x500000007);
    });
    EXPECT_TRUE(worker.Finishes());
    EXPECT_EQ(
        dialog.Messages,
        (SeenMessages{{WM_SEARCH_POSITION, 3, 4}, {WM_SEARCH_POSITION, 3, 4}, {WM_PARTITION_FOUND, 5}}));
    EXPECT_EQ(frame.Messages, (SeenMessages{{WM_COPY_POSITION, 6, 7}}));
    EXPECT_EQ(host.SearchedTo().Sector, 0x100000003U);
}

} // namespace

} // namespace thntfs::test
