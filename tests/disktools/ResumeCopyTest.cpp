#include "CopyFixture.h"
#include "support/FailingFileStore.h"

#include <set>

namespace thntfs::test {

namespace {

/// A disk with bad places at the borders of transfers, in the first one and among the last sectors.
constexpr std::uint64_t kSectors = 540;
const std::vector<std::uint64_t> kBad = {3, 4, 255, 256, 400, 520, 539};

class ResumeCopyTest : public CopyFixture {
protected:
    void SetUp() override {
        OpenNumbered(kSectors);
        for (const std::uint64_t sector : kBad) {
            Plan->Rules.push_back({sector, 1, kErrorCrc});
        }
    }

    [[nodiscard]] std::string MapPath() const { return scratch_ / "disk.th2.map"; }

    /// A ledger that writes its map after each transfer.
    [[nodiscard]] CopyLedger BusyLedger(CopyMap map) const { return {std::move(map), MapPath(), "test", 0}; }

    /// The map as the next run finds it; all unread where there is none.
    [[nodiscard]] CopyMap MapOnDisk() const {
        std::string why;
        auto saved = LoadMap(MapPath(), kSectors * 512, why);
        EXPECT_TRUE(saved || why.starts_with("The system cannot find")) << why;
        return saved ? std::move(saved->Map) : FreshMap();
    }

    /// Everything that the map calls read stands in these bytes, and what it calls bad is zeros there.
    void ExpectTrue(const CopyMap& map, const ByteVector& image) const {
        const ByteVector expected = Expected(kBad);
        map.ForEach([&](const Area& area) {
            if (area.State == AreaState::Unread) {
                return;
            }
            ASSERT_LE(area.End(), image.size()) << PictureOf(map);
            const auto first = static_cast<std::ptrdiff_t>(area.First);
            const auto end = static_cast<std::ptrdiff_t>(area.End());
            EXPECT_TRUE(std::equal(image.begin() + first, image.begin() + end, expected.begin() + first))
                << PictureOf(map);
        });
    }

    /// No request since the log was cleared touches what a map calls read or bad.
    void ExpectOnlyUnreadTouched(const CopyMap& map) const {
        const auto isUnread = [&map](std::uint64_t offset, std::uint64_t size) {
            const auto area = map.Find(AreaState::Unread, offset);
            return offset >= kSectors * 512 ||
                   (area && area->First == offset && area->End() >= std::min(offset + size, kSectors * 512));
        };
        for (const ReadRequest& request : Plan->Log) {
            EXPECT_TRUE(isUnread(request.Offset, request.Size))
                << "read " << request.Offset / 512 << "+" << request.Size / 512 << " of " << PictureOf(map);
        }
        for (const MemoryFile::Stretch& request : Target.Writes) {
            EXPECT_TRUE(isUnread(request.Offset, request.Size))
                << "written " << request.Offset / 512 << "+" << request.Size / 512 << " of "
                << PictureOf(map);
        }
    }

    void ForgetRequests() {
        Plan->Log.clear();
        Target.Writes.clear();
        Reports.CopyPositions.clear();
    }

    CopyFolder scratch_;
};

} // namespace

// The user may stop at each position told, and at each single sector of a bad transfer.
TEST_F(ResumeCopyTest, AfterAStopAnywhereTheRestIsReadAndNothingElse) {
    std::uint64_t stops = 0;
    for (std::uint64_t stopAt = 1;; ++stopAt) {
        SCOPED_TRACE(stopAt);
        Engine.ScanRunFlag = 1;
        Target.Clear();
        std::uint64_t calls = 0;
        Reports.OnGate = Reports.OnCopyPosition = [&] {
            Engine.ScanRunFlag = ++calls == stopAt ? 0 : Engine.ScanRunFlag.load();
        };
        CopyLedger first(FreshMap(), MapPath(), "test");
        if (Copy(&first)) {
            break;
        }
        ++stops;
        Reports.OnGate = Reports.OnCopyPosition = nullptr;
        const CopyMap map = MapOnDisk();
        ASSERT_EQ(PictureOf(map), PictureOf(first.Map()));
        ExpectTrue(map, Target.Synced);

        ForgetRequests();
        Engine.ScanRunFlag = 1;
        CopyLedger second(map);
        EXPECT_TRUE(Resume(second));
        EXPECT_EQ(Target.Content, Expected(kBad));
        EXPECT_EQ(Reports.CopyPositions.back(), (TestHost::Pair{kSectors, kSectors}));
        EXPECT_EQ(second.Map().BytesOf(AreaState::Bad), kBad.size() * 512);
        EXPECT_EQ(second.Map().BytesOf(AreaState::Unread), 0U);
        ExpectOnlyUnreadTouched(map);
        ForgetRequests();
        if (HasFailure()) {
            return;
        }
    }
    EXPECT_GT(stops, 450U) << "in the walks of two transfers and at the positions";
}

TEST_F(ResumeCopyTest, SmallDiskThatWasStoppedStillGetsItsFullFirstTransfer) {
    OpenNumbered(100);
    Plan->Rules = {{50, 1, kErrorCrc, 1}};
    Reports.OnGate = [&] { Engine.ScanRunFlag = Reports.Gates == 60 ? 0 : 1; };
    CopyLedger ledger(FreshMap());
    EXPECT_FALSE(Copy(&ledger));
    EXPECT_EQ(PictureOf(ledger.Map()), "0+59+ 59+41?");
    Reports.OnGate = nullptr;
    Engine.ScanRunFlag = 1;
    Target.Content.resize(59 * 512);
    EXPECT_TRUE(Resume(ledger));
    EXPECT_EQ(Target.Content, Expected());
}

// Whatever call fails, with all that follow it, as when the machine stops: what the device has then agrees
// with the map that is on the disk then.
TEST_F(ResumeCopyTest, TheMapIsTrueWhereverTheRunIsKilled) {
    std::uint64_t kills = 0;
    for (std::uint64_t killAt = 1;; ++killAt) {
        SCOPED_TRACE(killAt);
        std::remove(MapPath().c_str());
        Target.Clear();
        FailingFileStore store;
        SetFileStore(&store);
        store.FailAt(killAt, kErrorIoDevice, true);
        const auto plan = &store.Plan();
        Target.OnCall = [plan] { return plan->NextCall(); };
        CopyLedger ledger = BusyLedger(FreshMap());
        Copy(&ledger);
        const bool killed = plan->Failures != 0;
        SetFileStore(nullptr);
        Target.OnCall = nullptr;
        const CopyMap map = MapOnDisk();
        ExpectTrue(map, Target.Synced);
        if (!killed) {
            EXPECT_EQ(map.BytesOf(AreaState::Unread), 0U);
            break;
        }
        ++kills;
        Target.Content = Target.Synced;
        ForgetRequests();
        CopyLedger rest(map);
        EXPECT_TRUE(Resume(rest));
        EXPECT_EQ(Target.Content, Expected(kBad));
        ExpectOnlyUnreadTouched(map);
        ForgetRequests();
        if (HasFailure()) {
            return;
        }
    }
    EXPECT_GT(kills, 100U);
}

TEST_F(ResumeCopyTest, AMapThatCannotBeWrittenDoesNotStopTheCopy) {
    FailingFileStore store;
    SetFileStore(&store);
    store.FailAt(1, kErrorDiskFull, true);
    CopyLedger ledger = BusyLedger(FreshMap());
    EXPECT_TRUE(Copy(&ledger));
    EXPECT_EQ(Target.Content, Expected(kBad));
    EXPECT_EQ(ledger.MapFailure(), kErrorDiskFull);
    EXPECT_TRUE(Reports.Boxes.empty());
}

TEST_F(ResumeCopyTest, HolesBetweenWhatOthersHaveReadAreFilled) {
    CopyLedger ledger(FreshMap());
    Target.Content = Expected(kBad);
    ledger.Mark(0, kSectors * 512, AreaState::Read);
    for (const auto& [first, count] : {std::pair{10U, 5U}, {250U, 200U}, {500U, 1U}, {530U, 4U}}) {
        ledger.Mark(first * 512, count * 512, AreaState::Unread);
        std::fill_n(Target.Content.begin() + first * 512, count * 512, std::uint8_t{0xEE});
    }
    const CopyMap map = ledger.Map();
    EXPECT_TRUE(Resume(ledger));
    EXPECT_EQ(Target.Content, Expected(kBad));
    ExpectOnlyUnreadTouched(map);
    EXPECT_EQ(Reports.CopyPositions,
              (std::vector<TestHost::Pair>{
                  {10, kSectors}, {250, kSectors}, {256, kSectors}, {500, kSectors}, {kSectors, kSectors}}));
}

// ---------------------------------------------------------------------- retry

TEST_F(ResumeCopyTest, RetryReadsTheBadSectorsOneByOneAndWritesWhatItGets) {
    CopyLedger ledger = BusyLedger(FreshMap());
    ASSERT_TRUE(Copy(&ledger));
    ForgetRequests();
    Reports.Log.clear();
    // Sector 3 comes back at once, 256 at the third pass, the others never.
    Plan->Rules = {{4, 1},  {255, 1}, {256, 1, kErrorSectorNotFound, 2}, {400, 1}, {520, 1, kErrorIoDevice},
                   {539, 1}};
    EXPECT_TRUE(RetryBadSectors(Target, 4, ledger));
    EXPECT_EQ(Target.Content, Expected({4, 255, 400, 520, 539}));
    EXPECT_EQ(PictureOf(ledger.Map()),
              "0+4+ 4+1- 5+250+ 255+1- 256+144+ 400+1- 401+119+ 520+1- 521+18+ 539+1-");
    EXPECT_EQ(PictureOf(MapOnDisk()), PictureOf(ledger.Map()));
    EXPECT_EQ(Plan->Log.size(), 7U + 6U + 6U + 5U);
    for (const ReadRequest& request : Plan->Log) {
        EXPECT_EQ(request.Size, 512U);
    }
    EXPECT_EQ(Target.Writes.size(), 2U);
    EXPECT_EQ(Reports.Pauses, 4U);
    EXPECT_EQ(Reports.Log.size(), 22U) << "one line for each that failed";
}

TEST_F(ResumeCopyTest, RetryPutsTheStampsBackIntoTheFirstSector) {
    Plan->Rules = {{0, 1}};
    CopyLedger ledger(FreshMap());
    ASSERT_TRUE(Copy(&ledger));
    EXPECT_EQ(Target.Content, Expected({0}));
    Plan->Rules.clear();
    Target.OnCall = [calls = 0]() mutable { return ++calls == 1 ? kErrorInvalidUserBuffer : kErrorNone; };
    EXPECT_TRUE(RetryBadSectors(Target, 1, ledger));
    EXPECT_EQ(PictureOf(ledger.Map()), "0+1- 1+539+");
    EXPECT_TRUE(RetryBadSectors(Target, 1, ledger));
    EXPECT_EQ(Target.Content, Expected());
    ForgetRequests();
    EXPECT_TRUE(RetryBadSectors(Target, 5, ledger));
    EXPECT_TRUE(Plan->Log.empty()) << "nothing is bad any more";
}

TEST_F(ResumeCopyTest, RetryStopsAtOnceAndAtAFatalCode) {
    CopyLedger ledger = BusyLedger(FreshMap());
    ASSERT_TRUE(Copy(&ledger));
    ForgetRequests();
    Plan->OnRead = [](std::uint64_t index, const ReadRequest&) { Engine.ScanRunFlag = index == 2 ? 0 : 1; };
    Plan->Rules.clear();
    EXPECT_FALSE(RetryBadSectors(Target, 9, ledger));
    EXPECT_EQ(Plan->Log.size(), 3U);
    EXPECT_EQ(Target.Content, Expected({256, 400, 520, 539}));
    EXPECT_EQ(PictureOf(MapOnDisk()), PictureOf(ledger.Map()));

    ForgetRequests();
    Engine.ScanRunFlag = 1;
    Plan->OnRead = nullptr;
    Plan->Rules = {{400, 1, kErrorNotReady}};
    EXPECT_TRUE(RetryBadSectors(Target, 9, ledger));
    EXPECT_EQ(Reports.Boxes, std::vector<std::string>{SystemErrorText(kErrorNotReady)});
    EXPECT_EQ(Target.Content, Expected({400, 520, 539}));
    EXPECT_EQ(PictureOf(MapOnDisk()), PictureOf(ledger.Map()));
}

} // namespace thntfs::test
