#include "CopyFixture.h"

namespace thntfs::test {

namespace {

using Pair = TestHost::Pair;
using Pairs = std::vector<Pair>;

class CopyDiskTest : public CopyFixture {
protected:
    /// Sector and count of all reads so far.
    [[nodiscard]] Pairs Reads() const {
        Pairs reads;
        for (const ReadRequest& request : Plan->Log) {
            reads.emplace_back(request.Offset / SectorBytes(), request.Size / SectorBytes());
        }
        return reads;
    }

    [[nodiscard]] Pairs Writes() const {
        Pairs writes;
        for (const MemoryFile::Stretch& request : Target.Writes) {
            writes.emplace_back(request.Offset / SectorBytes(), request.Size / SectorBytes());
        }
        return writes;
    }

    void ExpectBox(ErrorCode code) const {
        EXPECT_EQ(Reports.Boxes, std::vector<std::string>{SystemErrorText(code)});
    }
};

/// The transfers of a whole copy, and the positions told on the way.
struct Course {
    Pairs Transfers = {{0, 256}};
    Pairs Positions;
};

Course CourseOf(std::uint64_t total) {
    Course course;
    std::uint64_t position = 256;
    for (; position < total - total % 256; position += 256) {
        course.Positions.emplace_back(position, total);
        course.Transfers.emplace_back(position, 256);
    }
    for (; position < total; ++position) {
        course.Transfers.emplace_back(position, 1);
    }
    course.Positions.emplace_back(total, total);
    return course;
}

} // namespace

TEST_F(CopyDiskTest, WholeTransfersThenSingleSectors) {
    for (const std::uint64_t sectors : {1U, 100U, 255U, 256U, 257U, 511U, 512U, 1000U}) {
        SCOPED_TRACE(sectors);
        OpenNumbered(sectors, sectors % 2 == 0 ? 4096 : 512);
        Target.Clear();
        Plan->Log.clear();
        Reports.CopyPositions.clear();
        EXPECT_TRUE(Copy());
        const Course course = CourseOf(sectors);
        EXPECT_EQ(Reads(), course.Transfers);
        EXPECT_EQ(Writes(), course.Transfers);
        EXPECT_EQ(Reports.CopyPositions, course.Positions);
        EXPECT_EQ(Target.Content, Expected());
        EXPECT_EQ(Target.Content.size(), CopiedBytes(sectors, kCopyTransferSectors));
        EXPECT_EQ(Target.Synced, Target.Content);
        EXPECT_EQ(Engine.ProgressDone, std::max<std::uint64_t>(sectors, 256)) << "of the first transfer, all";
        EXPECT_EQ(Engine.ProgressTotal, sectors);
    }
}

// A failed read leaves half of the sector in the buffer.
TEST_F(CopyDiskTest, ABadSectorIsZerosAndMovesNothing) {
    OpenNumbered(600);
    Plan->SectorBytes = 256;
    Plan->GivePart = true;
    Plan->Rules = {{1, 1, kErrorCrc}, {601, 2, kErrorSectorNotFound}, {1199, 1, kErrorIoDevice}};
    CopyLedger ledger(FreshMap());
    EXPECT_TRUE(Copy(&ledger));
    EXPECT_EQ(Target.Content, Expected({0, 300, 301, 599}));
    EXPECT_EQ(PictureOf(ledger.Map()), "0+1- 1+299+ 300+2- 302+297+ 599+1-");
    EXPECT_TRUE(Reports.Boxes.empty());
    EXPECT_EQ(Reports.CopyPositions.back(), Pair(600, 600));
}

TEST_F(CopyDiskTest, AStopKeepsWhatIsThere) {
    OpenNumbered(1000);
    for (const auto& [stopAtRead, sectors] : {std::pair{0U, 256U}, {1U, 512U}, {5U, 771U}}) {
        SCOPED_TRACE(stopAtRead);
        Engine.ScanRunFlag = 1;
        Target.Clear();
        Plan->Log.clear();
        Plan->OnRead = [at = stopAtRead](std::uint64_t index, const ReadRequest&) {
            Engine.ScanRunFlag = index < at ? 1 : 0;
        };
        EXPECT_FALSE(Copy());
        ByteVector expected = Expected();
        expected.resize(sectors * 512U);
        EXPECT_EQ(Target.Content, expected);
        EXPECT_EQ(Target.Reserved, 0U) << "no room is kept";
        EXPECT_EQ(Reports.CopyPositions.back(), Pair(sectors, 1000));
    }
}

TEST_F(CopyDiskTest, AFatalFailureEndsTheCopyWithoutALastPosition) {
    for (const ErrorCode code : {kErrorNotReady, kErrorCrc}) { // of a read; of a write, where 23 is fatal too
        OpenNumbered(1000);
        Reports.CopyPositions.clear();
        Reports.Boxes.clear();
        Plan->Rules = {{600, code == kErrorNotReady ? 1U : 0U, code}};
        Target.OnCall = [calls = 0, code]() mutable {
            return code == kErrorCrc && ++calls == 3 ? code : kErrorNone;
        };
        CopyLedger ledger(FreshMap());
        EXPECT_TRUE(Copy(&ledger));
        ExpectBox(code);
        EXPECT_EQ(Reports.CopyPositions, (Pairs{{256, 1000}, {512, 1000}}));
        EXPECT_EQ(Target.Synced, Target.Content);
        EXPECT_EQ(PictureOf(ledger.Map()), "0+512+ 512+488?")
            << "half a transfer in the target counts for nothing";
    }
}

// After a sync that failed nobody knows what the device has.
TEST_F(CopyDiskTest, AFailedSyncIsAFatalWrite) {
    OpenNumbered(256);
    int calls = 0;
    Target.OnCall = [&calls] { return ++calls == 2 ? kErrorIoDevice : kErrorNone; };
    EXPECT_TRUE(Copy());
    ExpectBox(kErrorIoDevice);
    EXPECT_EQ(calls, 2) << "no second sync, which would be believed";
    EXPECT_TRUE(Reports.CopyPositions.empty());
}

TEST_F(CopyDiskTest, ABlockPassedOverMovesNothingAndIsNotCalledRead) {
    OpenNumbered(768);
    int calls = 0;
    Target.OnCall = [&calls] { return ++calls == 2 ? kErrorInvalidUserBuffer : kErrorNone; };
    CopyLedger ledger(FreshMap());
    EXPECT_TRUE(Copy(&ledger));
    EXPECT_TRUE(Reports.Boxes.empty());
    EXPECT_EQ(PictureOf(ledger.Map()), "0+256+ 256+256? 512+256+");
    EXPECT_EQ(ByteVector(Target.Content.begin() + 512 * 512, Target.Content.end()),
              ByteVector(Original.begin() + 512 * 512, Original.end()));
}

} // namespace thntfs::test
