#include "engine/EngineState.h"
#include "engine/Host.h"
#include "shell/ShellFixture.h"

namespace thntfs::test {

namespace {

constexpr std::uint32_t kStep = WM_APP + 1;

class PauseTest : public testing::Test {
protected:
    PauseTest() { Engine.ScanRunFlag = 1; }
    ~PauseTest() override { Engine.ScanRunFlag = 0; }

    /// What a job does: steps, each with a message and a passage of the gate, until it is stopped.
    void Work() {
        while (Engine.ScanRunFlag != 0) {
            Host().PassGate();
            ++Steps;
            SendWindowMessage(&Target, kStep);
        }
    }
    static bool Holds() {
        return WaitUntil([] { return WorkerGate().IsHolding(); });
    }
    /// Lets some time pass in which a worker that isn't held would go on.
    static void LetTimePass() {
        WaitUntil([] { return false; }, 50);
    }

    TestTarget Target;
    std::atomic<int> Steps = 0;
};

TEST_F(PauseTest, AWorkerStandsStillUntilThePauseIsOverAndThenMayEnd) {
    TestWorker worker([this] { Work(); });
    for (int round = 0; round < 3; ++round) {
        const int before = Steps;
        EXPECT_TRUE(WaitUntil([&] { return Steps > before; }));
        const WorkerPause pause;
        ASSERT_TRUE(Holds());
        const int atPause = Steps;
        Engine.ScanRunFlag = round < 2 ? 1 : 0;
        LetTimePass();
        EXPECT_EQ(Steps, atPause);
        EXPECT_FALSE(worker.IsDone()) << "a stop ends it behind the pause";
    }
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
    const WorkerPause pause;
    EXPECT_FALSE(WorkerGate().IsHolding());
    EXPECT_TRUE(WaitUntil([this] { return Target.Count(kStep) == 1; }));
    ASSERT_TRUE(Holds());
    TestWorker late([this] { SendWindowMessage(&Target, kStep); });
    LetTimePass();
    EXPECT_EQ(Target.Count(kStep), 1U) << "but none sets out";
    EXPECT_EQ(Steps, 0);
    Host().PassGate();
    SendWindowMessage(&Target, kStep);
    EXPECT_EQ(Target.Count(kStep), 2U) << "the interface thread is never held";
}

} // namespace

} // namespace thntfs::test
