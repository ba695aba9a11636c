#include "CopyFixture.h"
#include "partitions/OpenSource.h"
#include "partitions/PartitionTable.h"
#include "platform/media/Medium.h"

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
        OpenNumbered(sectors);
        Target.Content.clear();
        Target.Writes.clear();
        Plan->Log.clear();
        Reports.CopyPositions.clear();
        EXPECT_EQ(Copy(), 1U);
        const Course course = CourseOf(sectors);
        EXPECT_EQ(Reads(), course.Transfers);
        EXPECT_EQ(Writes(), course.Transfers);
        EXPECT_EQ(Reports.CopyPositions, course.Positions);
        EXPECT_EQ(Target.Content, Expected());
        EXPECT_EQ(Target.Synced, Target.Content);
    }
}

TEST_F(CopyDiskTest, AThousandSectorsAsTold) {
    OpenNumbered(1000);
    EXPECT_EQ(Copy(), 1U);
    ASSERT_EQ(Reads().size(), 3U + 232U);
    EXPECT_EQ(Reads()[2], Pair(512, 256));
    EXPECT_EQ(Reads()[3], Pair(768, 1));
    EXPECT_EQ(Reports.CopyPositions, (Pairs{{256, 1000}, {512, 1000}, {1000, 1000}}));
}

TEST_F(CopyDiskTest, TheFirstTransferCarriesTwoStampsAndNothingElse) {
    OpenNumbered(300);
    Copy();
    for (std::size_t i = 0; i < Original.size(); ++i) {
        const bool stamped = (i >= 432 && i < 440) || i == 444 || i == 445;
        EXPECT_TRUE(stamped || Target.Content[i] == Original[i]) << i;
    }
    EXPECT_EQ(U64At(Target.Content, 432), 300U);
    EXPECT_EQ(U16At(Target.Content, 444), 512U);
}

TEST_F(CopyDiskTest, ABadSectorIsZerosAndMovesNothing) {
    OpenNumbered(600);
    Plan->GivePart = true;
    Plan->Rules = {{0, 1, kErrorCrc}, {300, 2, kErrorSectorNotFound}, {599, 1, kErrorIoDevice}};
    CopyLedger ledger(FreshMap());
    EXPECT_EQ(Copy(&ledger), 1U);
    EXPECT_EQ(Target.Content, Expected({0, 300, 301, 599}));
    EXPECT_EQ(PictureOf(ledger.Map()), "0+1- 1+299+ 300+2- 302+297+ 599+1-");
    EXPECT_TRUE(Reports.Boxes.empty());
    EXPECT_EQ(Reports.CopyPositions.back(), Pair(600, 600));
    for (const std::uint64_t sector : {0U, 300U, 301U}) {
        EXPECT_GE(Reports.CountLogged("Drive access error @ sector =" + std::to_string(sector) +
                                      (sector == 0 ? " (Code =23)" : " (Code =27)")),
                  1U);
    }
}

// The medium may have given a part of the sector before it failed.
TEST_F(CopyDiskTest, NothingOfABadSectorIsKept) {
    class HalfMedium final : public Medium {
    public:
        explicit HalfMedium(std::unique_ptr<Medium> whole)
            : whole_(std::move(whole)) {}
        ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override {
            whole_->ReadAt(offset, buffer);
            return offset <= 512 && offset + buffer.size() > 512 ? kErrorCrc : kErrorNone;
        }
        [[nodiscard]] std::uint64_t SizeBytes() const override { return whole_->SizeBytes(); }
        [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return 0; }

    private:
        std::unique_ptr<Medium> whole_;
    };
    OpenNumbered(256);
    Engine.SourceDisk.MediaHandle = std::make_unique<HalfMedium>(MakeMemoryMedium(Original));
    Copy();
    EXPECT_EQ(Target.Content, Expected({1}));
}

TEST_F(CopyDiskTest, AStopKeepsTheTransfersUpToIt) {
    OpenNumbered(1000);
    for (const std::uint64_t stopAt : {256U, 512U}) {
        SCOPED_TRACE(stopAt);
        Engine.ScanRunFlag = 1;
        Target.Content.clear();
        Reports.CopyPositions.clear();
        Reports.OnCopyPosition = [&] {
            Engine.ScanRunFlag = Reports.CopyPositions.back().first == stopAt ? 0 : Engine.ScanRunFlag.load();
        };
        EXPECT_EQ(Copy(), 0U);
        ByteVector expected = Expected();
        expected.resize(stopAt * 512);
        EXPECT_EQ(Target.Content, expected);
        EXPECT_EQ(Reports.CopyPositions.back(), Pair(stopAt, 1000));
    }
}

TEST_F(CopyDiskTest, AStopAmongTheLastSectorsIsTakenAtOnce) {
    OpenNumbered(1000);
    Plan->OnRead = [](std::uint64_t index, const ReadRequest&) {
        Engine.ScanRunFlag = index == 5 ? 0 : Engine.ScanRunFlag.load();
    };
    EXPECT_EQ(Copy(), 0U);
    EXPECT_EQ(Target.Content.size(), 771U * 512U);
    EXPECT_EQ(Reports.CopyPositions.back(), Pair(771, 1000));
}

TEST_F(CopyDiskTest, AFatalReadEndsTheCopyWithoutALastPosition) {
    OpenNumbered(1000);
    Plan->Rules = {{600, 1, kErrorNotReady}};
    CopyLedger ledger(FreshMap());
    EXPECT_EQ(Copy(&ledger), 1U);
    ExpectBox(kErrorNotReady);
    EXPECT_EQ(Reports.CopyPositions, (Pairs{{256, 1000}, {512, 1000}}));
    EXPECT_EQ(Target.Content.size(), 512U * 512U);
    EXPECT_EQ(Target.Synced, Target.Content);
    EXPECT_EQ(PictureOf(ledger.Map()), "0+512+ 512+488?");
}

TEST_F(CopyDiskTest, AFatalWriteEndsTheCopyWithoutALastPosition) {
    OpenNumbered(1000);
    int calls = 0;
    Target.OnCall = [&calls] { return ++calls == 3 ? kErrorDiskFull : kErrorNone; };
    CopyLedger ledger(FreshMap());
    EXPECT_EQ(Copy(&ledger), 1U);
    ExpectBox(kErrorDiskFull);
    EXPECT_EQ(Reports.CopyPositions, (Pairs{{256, 1000}, {512, 1000}}));
    EXPECT_EQ(PictureOf(ledger.Map()), "0+512+ 512+488?")
        << "half a transfer in the target counts for nothing";
}

// After a sync that failed nobody knows what the device has.
TEST_F(CopyDiskTest, AFailedSyncIsAFatalWrite) {
    OpenNumbered(256);
    int calls = 0;
    Target.OnCall = [&calls] { return ++calls == 2 ? kErrorIoDevice : kErrorNone; };
    EXPECT_EQ(Copy(), 1U);
    ExpectBox(kErrorIoDevice);
    EXPECT_EQ(calls, 2) << "no second sync, which would be believed";
    EXPECT_TRUE(Reports.CopyPositions.empty());
}

TEST_F(CopyDiskTest, WriteBlockPassesOverAnInvalidBufferAlone) {
    const ByteVector block(512, 7);
    const auto outcome = [&](ErrorCode code) -> std::string {
        Target.OnCall = [code] { return code; };
        try {
            return WriteBlock(Target, 0, block) ? "written" : "passed over";
        } catch (const CUserException&) {
            return "thrown";
        }
    };
    EXPECT_EQ(outcome(kErrorNone), "written");
    EXPECT_EQ(outcome(kErrorInvalidUserBuffer), "passed over");
    EXPECT_TRUE(Reports.Boxes.empty());
    for (const ErrorCode code : {kErrorAccessDenied, kErrorCrc, kErrorDiskFull, kErrorIoDevice}) {
        Reports.Boxes.clear();
        EXPECT_EQ(outcome(code), "thrown");
        ExpectBox(code);
    }
}

TEST_F(CopyDiskTest, ABlockPassedOverMovesNothingAndIsNotCalledRead) {
    OpenNumbered(768);
    int calls = 0;
    Target.OnCall = [&calls] { return ++calls == 2 ? kErrorInvalidUserBuffer : kErrorNone; };
    CopyLedger ledger(FreshMap());
    EXPECT_EQ(Copy(&ledger), 1U);
    EXPECT_TRUE(Reports.Boxes.empty());
    EXPECT_EQ(PictureOf(ledger.Map()), "0+256+ 256+256? 512+256+");
    EXPECT_EQ(ByteVector(Target.Content.begin() + 512 * 512, Target.Content.end()),
              ByteVector(Original.begin() + 512 * 512, Original.end()));
}

TEST_F(CopyDiskTest, AnImageOpensAndGivesTheVolumesOfItsDisk) {
    for (const std::uint32_t sectorBytes : {512U, 4096U}) {
        SCOPED_TRACE(sectorBytes);
        VolumeGeometry geometry;
        geometry.SectorBytes = sectorBytes;
        geometry.SectorsPerCluster = 4096 / sectorBytes;
        geometry.RecordBytes = std::max(1024U, sectorBytes);
        geometry.TotalSectors = 16383U * 512U / sectorBytes;
        const VolumeBuilder volume(geometry);
        OpenDisk(volume.SharedImage(), static_cast<std::uint16_t>(sectorBytes), sectorBytes);
        ASSERT_EQ(ReadPartitionTable(), 1U);
        const StoredCandidate candidate = EncodeCandidate(Engine.SourceDisk.Partitions.front(), false);
        const std::uint64_t sectors = Total();
        Target.Content.clear();
        ASSERT_EQ(Copy(), 1U);

        const CopyFolder scratch;
        WriteFileBytes(scratch / "disk.th2", Target.Content);
        ASSERT_EQ(OpenImageFile(scratch / "disk.th2"), kErrorNone);
        EXPECT_EQ(SectorBytes(), sectorBytes);
        EXPECT_EQ(Total(), sectors);
        ASSERT_EQ(ReadPartitionTable(), 1U);
        EXPECT_EQ(EncodeCandidate(Engine.SourceDisk.Partitions.front(), false), candidate);
        EXPECT_EQ(Engine.SourceDisk.Partitions.size(), 1U);
    }
}

} // namespace thntfs::test
