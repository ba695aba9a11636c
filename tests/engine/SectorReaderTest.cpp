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
        Reports.Log.clear();
        Plan->Log.clear();
        Buffer.assign(sectors * 512, 0);
        return ReadSectors(Buffer, kFirst);
    }

    /// One sign a sector of Buffer: '0' zeros, '+' its own data, '?' anything else.
    [[nodiscard]] std::string Picture() const {
        std::string picture;
        for (std::size_t sector = 0; sector < Buffer.size() / 512; ++sector) {
            const std::uint8_t byte = Buffer[sector * 512];
            const bool even = byte == Buffer[sector * 512 + 511];
            picture += even && byte == 0 ? '0' : even && byte == kFirst + sector + 1 ? '+' : '?';
        }
        return picture;
    }

    ByteVector Buffer;
};

} // namespace

TEST_F(SectorReaderTest, PassesBadSectorsOverInAJob) {
    struct Case {
        const char* Name;
        FaultRule Rule;
        ErrorCode Status;
        std::uint64_t Pauses;
        const char* Picture;
        std::vector<std::uint64_t> Bad;
    };
    const Case cases[] = {
        {"one in the middle", {10, 1, 23}, 0, 0, "++0+", {10}},
        {"the last", {11, 1, 27}, 27, 0, "+++0", {11}},
        {"all", {0, 64, 27}, 27, 0, "0000", {8, 9, 10, 11}},
        {"a passing fault", {9, 1, 23, 1}, 0, 0, "++++", {}},
        // A pause before the walk, for the bulk read, and one behind each sector but the last.
        {"transport", {9, 2, 1117}, 0, 3, "+00+", {9, 10}},
        {"transport, last", {11, 1, 1117}, 1117, 1, "+++0", {11}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.Name);
        Plan->Rules = {test.Rule};
        Plan->GivePart = false;
        Reports.Pauses = 0;
        const ReadOutcome outcome = Read(4);
        EXPECT_EQ(outcome.Code, test.Status);
        EXPECT_EQ(outcome.UntriedFrom, kAllWereTried);
        EXPECT_EQ(outcome.Whole(), test.Bad.empty());
        EXPECT_EQ(Picture(), test.Picture);
        EXPECT_EQ(Reports.Pauses, test.Pauses);
        EXPECT_EQ(outcome.BadSectors, test.Bad);
        EXPECT_EQ(Reports.Log.size(), 1 + test.Bad.size()) << "one for the request, one for each bad sector";
    }
    EXPECT_TRUE(Reports.Boxes.empty());
}

TEST_F(SectorReaderTest, AFatalCodeShowsItsBoxAndThenThrowsUnlessItIsOfTheLastSector) {
    const auto readFatally = [this](std::vector<FaultRule> rules, std::size_t reads) {
        Plan->Rules = std::move(rules);
        Reports.Boxes.clear();
        EXPECT_THROW(Read(4), CUserException);
        EXPECT_EQ(Reports.Boxes, std::vector<std::string>{SystemErrorText(kErrorNotReady)});
        EXPECT_EQ(Plan->Log.size(), reads);
    };
    readFatally({{10, 1, kErrorNotReady}}, 1);
    readFatally({{9, 1, 23, 1}, {9, 1, kErrorNotReady}}, 3);
    Plan->Rules = {{11, 1, 23, 1}, {11, 1, kErrorNotReady}};
    EXPECT_EQ(Read(4).Code, kErrorNotReady);
    EXPECT_EQ(Picture(), "+++0");
    EXPECT_EQ(Reports.Boxes.size(), 1U) << "that of before";
}

TEST_F(SectorReaderTest, OutsideAJobAFailedReadIsGivenUp) {
    Engine.ScanRunFlag = 0;
    for (const ErrorCode code : {kErrorCrc, kErrorIoDevice, kErrorAccessDenied}) {
        Plan->Rules = {{10, 1, code}};
        const ReadOutcome outcome = Read(4);
        EXPECT_EQ(outcome.Code, kErrorNone);
        EXPECT_EQ(outcome.UntriedFrom, kFirst);
        EXPECT_FALSE(outcome.Whole());
        EXPECT_EQ(Picture(), "++00") << "as the failed read left it";
        EXPECT_EQ(Reports.Log.size(), 1U);
    }
    EXPECT_EQ(Reports.Pauses + Reports.Boxes.size(), 0U);
}

TEST_F(SectorReaderTest, ClearingTheFlagEndsTheWalkBeforeTheNextSector) {
    Plan->GivePart = false;
    Plan->OnRead = [](std::uint64_t index, const ReadRequest&) { Engine.ScanRunFlag = index < 3 ? 1 : 0; };
    for (const ErrorCode code : {kErrorCrc, kErrorIoDevice, kErrorNotReady}) {
        Plan->Rules = {{10, 1, 23, 1}, {10, 1, code}};
        Engine.ScanRunFlag = 1;
        const ReadOutcome outcome = Read(5);
        EXPECT_EQ(outcome.Code, kErrorNone);
        EXPECT_EQ(outcome.UntriedFrom, kFirst + 3);
        EXPECT_EQ(Picture(), "++000");
    }
    EXPECT_EQ(Reports.Pauses + Reports.Boxes.size(), 0U);
}

TEST_F(SectorReaderTest, NeverWritesBeyondTheRequest) {
    for (const auto& [sectorBytes, bytes] : {std::pair{512, 700}, {512, 100}, {4096, 512}, {4096, 5000}}) {
        OpenDisk(ByteVector(65536, 0x11), static_cast<std::uint16_t>(sectorBytes));
        Plan->Rules = {{0, 1, 23, 1}};
        ByteVector guarded(static_cast<std::size_t>(bytes) + 64, 0xEE);
        ReadSectors(Bytes(guarded).first(static_cast<std::size_t>(bytes)), 0);
        EXPECT_EQ(std::count(guarded.begin(), guarded.end() - 64, 0x11), bytes);
        EXPECT_EQ(std::count(guarded.end() - 64, guarded.end(), 0xEE), 64);
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
    Reports.Log.clear();
    EXPECT_FALSE(TryReadSectors(buffer, 4294967300));
    EXPECT_TRUE(Reports.Log.empty()) << "a read ahead leaves no line";
}

TEST_F(SectorReaderTest, ReadsIntoABufferThatCountsAsCleared) {
    const auto read = [this](std::uint64_t first) {
        Buffer.assign(2048, 0xEE);
        EXPECT_EQ(ReadSectorsCleared(Buffer, first).Code, kErrorNone);
        return Picture();
    };
    EXPECT_EQ(read(kFirst), "++++");
    Plan->Rules = {{10, 1, kErrorCrc}};
    EXPECT_EQ(read(kFirst), "++0+");
    Engine.ScanRunFlag = 0;
    EXPECT_EQ(read(kFirst), "0000") << "whatever the failed read left";
    for (const std::uint64_t first : {62ULL, 64ULL, 65ULL, ~0ULL, ~0ULL >> 9U}) {
        EXPECT_EQ(read(first).substr(2), "00") << first;
        EXPECT_EQ(Buffer[0], first == 62 ? 63 : 0) << first;
    }
    Plan->Rules.clear();
    Buffer.assign(2048, 0xEE);
    EXPECT_TRUE(TryReadSectors(Buffer, 63));
    EXPECT_EQ(Picture().substr(1), "000");
    CloseDisk();
    EXPECT_EQ(read(kFirst), "0000");
    EXPECT_EQ(ReadSectors({}, 0).Code, kErrorInvalidHandle) << "a request of nothing gives its code back";
    Engine.ScanRunFlag = 1;
    EXPECT_THROW(Read(1), CUserException);
}

TEST_F(SectorReaderTest, ProbeTakesTheStampedSectorSize) {
    Engine.ScanRunFlag = 0;
    ByteVector image(1024);
    StampImage(image, 2, 4096);
    OpenDisk(image);
    for (const std::uint16_t expected : {std::uint16_t{4096}, std::uint16_t{0}}) {
        Engine.SourceDisk.BytesPerSector = 0;
        ProbeImageSectorSize();
        EXPECT_EQ(Engine.SourceDisk.BytesPerSector, expected);
        Plan->Rules = {{0, 1, 23}};
    }
}

} // namespace thntfs::test
