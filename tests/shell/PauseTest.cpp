#include "engine/EngineState.h"
#include "engine/Host.h"
#include "shell/ShellFixture.h"

namespace thntfs::test {

namespace {

constexpr std::uint32_t kStep = WM_APP + 1;
constexpr int kQuietMilliseconds = 50;

bool Holds() {
    return WaitUntil([] { return WorkerGate().IsHolding(); });
}

/// Lets some time pass in which a worker that isn't held would go on.
void LetTimePass() {
    WaitUntil([] { return false; }, kQuietMilliseconds);
}

class PauseTest : public testing::Test {
protected:
    void SetUp() override { Engine.ScanRunFlag = 1; }
    void TearDown() override { Engine.ScanRunFlag = 0; }

    /// What a job does: steps, each with a message and a passage of the gate, until it is stopped.
    void Work() {
        while (Engine.ScanRunFlag != 0) {
            Host().PassGate();
            ++Steps;
            SendWindowMessage(&Target, kStep);
        }
    }

    TestTarget Target;
    std::atomic<int> Steps = 0;
};

TEST_F(PauseTest, AWorkerStandsStillUntilThePauseIsOver) {
    TestWorker worker([this] { Work(); });
    EXPECT_TRUE(WaitUntil([this] { return Steps > 10; }));
    for (int round = 0; round < 3; ++round) {
        int atPause = 0;
        {
            const WorkerPause pause;
            ASSERT_TRUE(Holds());
            atPause = Steps;
            LetTimePass();
            EXPECT_EQ(Steps, atPause);
        }
        EXPECT_TRUE(WaitUntil([&] { return Steps > atPause; }));
    }
    Engine.ScanRunFlag = 0;
    EXPECT_TRUE(worker.Finishes());
}

TEST_F(PauseTest, APauseBegunByTheHandlerHoldsTheSenderBehindIt) {
    Target.Handle = [](auto, auto, auto) { return WorkerGate().Close(), 3; };
    std::intptr_t result = 0;
    TestWorker worker([&] {
        result = SendWindowMessage(&Target, kStep);
        ++Steps;
    });
    ASSERT_TRUE(Holds());
    LetTimePass();
    EXPECT_EQ(Target.Count(kStep), 1U);
    EXPECT_EQ(Steps, 0);
    WorkerGate().Open();
    EXPECT_TRUE(worker.Finishes());
    EXPECT_EQ(result, 3);
}

TEST_F(PauseTest, AMessageThatWasOnItsWayIsHandledDuringThePause) {
    TestWorker worker([&] {
        SendWindowMessage(&Target, kStep);
        ++Steps;
    });
    worker.AwaitSleep();
    {
        const WorkerPause pause;
        EXPECT_TRUE(WaitUntil([this] { return Target.Count(kStep) == 1; }));
        ASSERT_TRUE(Holds());
        EXPECT_EQ(Steps, 0);
    }
    EXPECT_TRUE(worker.Finishes());
}

TEST_F(PauseTest, AStopDuringThePauseEndsTheWorker) {
    TestWorker worker([this] { Work(); });
    {
        const WorkerPause pause;
        ASSERT_TRUE(Holds());
        Engine.ScanRunFlag = 0;
        LetTimePass();
        EXPECT_FALSE(worker.IsDone());
    }
    EXPECT_TRUE(worker.Finishes());
}

TEST_F(PauseTest, TheInterfaceThreadIsNeverHeld) {
    const WorkerPause pause;
    Host().PassGate();
    SendWindowMessage(&Target, kStep);
    EXPECT_EQ(Target.Count(kStep), 1U);
    EXPECT_FALSE(WorkerGate().IsHolding());
}

} // namespace

} // namespace thntfs::test
