#include "engine/SectorReader.h"

#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

constexpr std::uint64_t kFirst = 8; // the requests below begin at this sector

class SectorReaderTest : public EngineFixture {
protected:
    SectorReaderTest() {
        OpenDisk(NumberedSectors(64));
        Engine.ScanRunFlag = 1;
    }

    /// Reads `sectors` sectors from kFirst into a cleared Buffer.
    ReadOutcome Read(std::size_t sectors) {
        Buffer.assign(sectors * 512, 0);
        return ReadSectors(Buffer, kFirst);
    }

    /// Reads and expects the fatal end.
    void ReadFatally(std::size_t sectors) {
        bool thrown = false;
        try {
            Read(sectors);
        } catch (const CUserException&) {
            thrown = true;
            BoxesBeforeThrow = Reports.Boxes.size();
        }
        EXPECT_TRUE(thrown);
    }

    /// One digit or letter a sector of Buffer: '0' zeros, '+' its own data, '?' anything else.
    [[nodiscard]] std::string Picture() const {
        std::string picture;
        for (std::size_t sector = 0; sector < Buffer.size() / 512; ++sector) {
            const std::uint8_t byte = Buffer[sector * 512];
            const bool whole = std::all_of(Buffer.begin() + static_cast<std::ptrdiff_t>(sector * 512),
                                           Buffer.begin() + static_cast<std::ptrdiff_t>(sector * 512 + 512),
                                           [byte](std::uint8_t b) { return b == byte; });
            picture += !whole ? '?' : byte == 0 ? '0' : byte == kFirst + sector + 1 ? '+' : '?';
        }
        return picture;
    }

    /// Sectors named in the log's lines, in order.
    [[nodiscard]] std::vector<std::string> LogNames() const {
        std::vector<std::string> names;
        for (const ProcessLogEntry& entry : Reports.Log) {
            names.push_back(entry.Name);
        }
        return names;
    }

    ByteVector Buffer;
    std::size_t BoxesBeforeThrow = 0;
};

std::string LineFor(std::uint64_t sector, ErrorCode code) {
    return "Drive access error @ sector =" + std::to_string(sector) + " (Code =" + std::to_string(code) + ")";
}

} // namespace

struct BadSectorCase {
    const char* Name;
    std::vector<FaultRule> Rules;
    std::size_t Sectors;
    ErrorCode Status;
    std::uint64_t Pauses;
    const char* Picture;
    std::vector<std::pair<std::uint64_t, ErrorCode>> Lines;
};

TEST_F(SectorReaderTest, PassesBadSectorsOverInAJob) {
    const BadSectorCase cases[] = {
        {"none", {}, 4, 0, 0, "++++", {}},
        {"one in the middle", {{10, 1, 23}}, 4, 0, 0, "++0+", {{8, 23}, {10, 23}}},
        {"the first", {{8, 1, 27}}, 3, 0, 0, "0++", {{8, 27}, {8, 27}}},
        {"the last", {{11, 1, 23}}, 4, 23, 0, "+++0", {{8, 23}, {11, 23}}},
        {"all", {{0, 64, 27}}, 3, 27, 0, "000", {{8, 27}, {8, 27}, {9, 27}, {10, 27}}},
        {"a passing fault", {{9, 1, 23, 1}}, 3, 0, 0, "+++", {{8, 23}}},
        // A pause before the walk, for the bulk read, and one behind each sector but the last.
        {"transport", {{9, 2, 1117}}, 5, 0, 3, "+00++", {{8, 1117}, {9, 1117}, {10, 1117}}},
        {"transport, last", {{11, 1, 1117}}, 4, 1117, 1, "+++0", {{8, 1117}, {11, 1117}}},
        {"mixed", {{9, 1, 1117}, {10, 1, 23}}, 4, 0, 2, "+00+", {{8, 1117}, {9, 1117}, {10, 23}}},
    };
    for (const BadSectorCase& test : cases) {
        SCOPED_TRACE(test.Name);
        Plan->Rules = test.Rules;
        Plan->GivePart = false;
        Reports.Log.clear();
        Reports.Pauses = 0;
        const ReadOutcome outcome = Read(test.Sectors);
        EXPECT_EQ(outcome.Code, test.Status);
        EXPECT_EQ(outcome.UntriedFrom, kAllWereTried);
        EXPECT_EQ(Picture(), test.Picture);
        EXPECT_EQ(Reports.Pauses, test.Pauses);
        std::vector<std::string> lines;
        std::vector<std::uint64_t> sectors;
        for (const auto& [sector, code] : test.Lines) {
            lines.push_back(LineFor(sector, code));
            sectors.push_back(sector);
        }
        EXPECT_EQ(LogNames(), lines);
        sectors.erase(sectors.begin(), sectors.begin() + (sectors.empty() ? 0 : 1)); // the bulk read's line
        EXPECT_EQ(outcome.BadSectors, sectors);
        EXPECT_TRUE(Reports.Boxes.empty());
    }
}

TEST_F(SectorReaderTest, AFatalCodeShowsItsBoxAndThenThrows) {
    for (const ErrorCode code : {kErrorAccessDenied, kErrorNotReady, kErrorInvalidParameter}) {
        SCOPED_TRACE(code);
        Plan->Rules = {{10, 1, code}};
        Plan->Log.clear();
        Reports.Boxes.clear();
        ReadFatally(4);
        EXPECT_EQ(Reports.Boxes, std::vector<std::string>{SystemErrorText(code)});
        EXPECT_EQ(BoxesBeforeThrow, 1U);
        EXPECT_EQ(Plan->Log.size(), 1U) << "no single sector is tried";
    }
}

TEST_F(SectorReaderTest, AFatalCodeOfASingleSectorCountsUnlessItIsTheLast) {
    Plan->Rules = {{9, 1, 23, 1}, {9, 1, kErrorNotReady}};
    ReadFatally(4);
    EXPECT_EQ(Plan->Log.size(), 3U) << "the whole, then two sectors";
    EXPECT_EQ(Reports.Boxes.size(), 1U);

    Plan->Rules = {{11, 1, 23, 1}, {11, 1, kErrorNotReady}};
    EXPECT_EQ(Read(4).Code, kErrorNotReady);
    EXPECT_EQ(Picture(), "+++0");
    EXPECT_EQ(Reports.Boxes.size(), 1U);
}

TEST_F(SectorReaderTest, OutsideAJobAFailedReadIsGivenUp) {
    Engine.ScanRunFlag = 0;
    for (const ErrorCode code : {kErrorCrc, kErrorIoDevice, kErrorAccessDenied}) {
        SCOPED_TRACE(code);
        Plan->Rules = {{10, 1, code}};
        Reports.Log.clear();
        const ReadOutcome outcome = Read(4);
        EXPECT_EQ(outcome.Code, kErrorNone);
        EXPECT_EQ(outcome.UntriedFrom, kFirst);
        EXPECT_FALSE(outcome.Whole());
        EXPECT_EQ(Picture(), "++00") << "as the failed read left it";
        EXPECT_EQ(LogNames(), std::vector<std::string>{LineFor(8, code)});
    }
    EXPECT_EQ(Reports.Pauses, 0U);
    EXPECT_TRUE(Reports.Boxes.empty());
}

TEST_F(SectorReaderTest, ClearingTheFlagEndsTheWalkBeforeTheNextSector) {
    for (const ErrorCode code : {kErrorCrc, kErrorIoDevice, kErrorNotReady}) {
        SCOPED_TRACE(code);
        Engine.ScanRunFlag = 1;
        Plan->GivePart = false;
        Plan->Rules = {{10, 1, 23, 1}, {10, 1, code}};
        Plan->Log.clear();
        Plan->OnRead = [](std::uint64_t index, const ReadRequest&) {
            Engine.ScanRunFlag = index == 3 ? 0 : Engine.ScanRunFlag.load();
        };
        const ReadOutcome outcome = Read(5);
        EXPECT_EQ(outcome.Code, kErrorNone);
        EXPECT_EQ(outcome.UntriedFrom, kFirst + 3);
        EXPECT_EQ(Picture(), "++000");
        EXPECT_EQ(Plan->Log.size(), 4U);
    }
    EXPECT_EQ(Reports.Pauses, 0U);
    EXPECT_TRUE(Reports.Boxes.empty());
}

TEST_F(SectorReaderTest, NeverWritesBeyondTheRequest) {
    struct Case {
        std::uint16_t SectorBytes;
        std::size_t Bytes;
    };
    for (const Case test : {Case{512, 700}, Case{512, 100}, Case{4096, 512}, Case{4096, 5000}}) {
        SCOPED_TRACE(test.Bytes);
        OpenDisk(ByteVector(65536, 0x11), test.SectorBytes);
        Plan->Rules = {{0, 1, 23, 1}};
        ByteVector guarded(test.Bytes + 64, 0xEE);
        EXPECT_EQ(ReadSectors(Bytes(guarded).first(test.Bytes), 0).Code, kErrorNone);
        EXPECT_EQ(guarded, [&] {
            ByteVector expected(test.Bytes, 0x11);
            expected.resize(test.Bytes + 64, 0xEE);
            return expected;
        }());
    }
}

TEST_F(SectorReaderTest, TheLogLineNamesSectorAndCode) {
    Plan->Rules = {{4294967300, 1, kErrorCrc}};
    ByteVector buffer(512);
    EXPECT_EQ(ReadSectorsOnce(buffer, 4294967300), kErrorCrc);
    ASSERT_EQ(Reports.Log.size(), 1U);
    EXPECT_EQ(Reports.Log[0].Name, "Drive access error @ sector =4294967300 (Code =23)");
    EXPECT_EQ(Reports.Log[0].Description, "Data error (cyclic redundancy check).");
    EXPECT_EQ(Reports.Log[0].Status, kLogFailed);
    EXPECT_EQ(Plan->Log[0].Offset, 4294967300U * 512);
}

TEST_F(SectorReaderTest, BehindTheEndTheBufferKeepsItsZeros) {
    Buffer.assign(2048, 0);
    EXPECT_EQ(ReadSectors(Buffer, 62).Code, kErrorNone);
    EXPECT_EQ(Buffer[1023], 64);
    EXPECT_EQ(Buffer[1024], 0);
    EXPECT_TRUE(Reports.Log.empty());
}

TEST_F(SectorReaderTest, ReadsIntoABufferThatCountsAsCleared) {
    const auto read = [this](std::uint64_t first) {
        Buffer.assign(2048, 0xEE);
        return ReadSectorsCleared(Buffer, first).Code;
    };
    EXPECT_EQ(read(kFirst), kErrorNone);
    EXPECT_EQ(Picture(), "++++");
    Plan->Rules = {{10, 1, kErrorCrc}};
    EXPECT_EQ(read(kFirst), kErrorNone);
    EXPECT_EQ(Picture(), "++0+");
    Engine.ScanRunFlag = 0;
    EXPECT_EQ(read(kFirst), kErrorNone);
    EXPECT_EQ(Picture(), "0000") << "whatever the failed read left";
    for (const std::uint64_t first : {62ULL, 64ULL, 65ULL, ~0ULL, ~0ULL >> 9U}) {
        EXPECT_EQ(read(first), kErrorNone);
        EXPECT_EQ(Buffer[0], first == 62 ? 63 : 0) << first;
        EXPECT_EQ(Buffer[1024], 0) << first;
    }
    CloseDisk();
    EXPECT_EQ(read(kFirst), kErrorNone);
    EXPECT_EQ(Picture(), "0000");
}

TEST_F(SectorReaderTest, WithoutAMedium) {
    CloseDisk();
    EXPECT_EQ(ReadSectors({}, 0).Code, kErrorInvalidHandle) << "a request of nothing gives its code back";
    EXPECT_TRUE(Reports.Boxes.empty());
    ReadFatally(1);
}

TEST_F(SectorReaderTest, ProbeTakesTheStampedSectorSize) {
    Engine.ScanRunFlag = 0;
    ByteVector image(1024);
    StampImage(image, 2, 4096);
    OpenDisk(image);
    Engine.SourceDisk.BytesPerSector = 0;
    ProbeImageSectorSize();
    EXPECT_EQ(Engine.SourceDisk.BytesPerSector, 4096);

    Plan->Rules = {{0, 1, 23}};
    Engine.SourceDisk.BytesPerSector = 0;
    ProbeImageSectorSize();
    EXPECT_EQ(Engine.SourceDisk.BytesPerSector, 0);
    EXPECT_EQ(ReadSectors(image, 0).Code, kErrorNone) << "as any failed read outside a job";
}

} // namespace thntfs::test
