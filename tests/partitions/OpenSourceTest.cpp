#include "partitions/OpenSource.h"

#include "partitions/PartitionTable.h"
#include "platform/files/WorkFolder.h"
#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

class OpenSourceTest : public EngineFixture {
protected:
    OpenSourceTest() { EXPECT_EQ(folder_.Create(), kErrorNone); }

    /// Opens an image of zeros with a stamp; gives the sector size that it gets.
    std::uint16_t OpenStamped(std::size_t bytes, std::uint16_t stamp) {
        ByteVector image(bytes);
        StampImage(image, 99, stamp);
        WriteFileBytes(Path("image"), image);
        EXPECT_EQ(OpenImageFile(Path("image")), kErrorNone);
        return Engine.SourceDisk.BytesPerSector;
    }

    [[nodiscard]] std::string Path(const std::string& name) const { return folder_.Path() + "/" + name; }

private:
    WorkFolder folder_;
};

} // namespace

TEST_F(OpenSourceTest, ASectorSizeIsStampedOr512) {
    for (const auto& [stamp, expected] : {std::pair{0, 512},
                                          {512, 512},
                                          {1024, 1024},
                                          {2048, 2048},
                                          {4096, 4096},
                                          {1536, 512},
                                          {3072, 512},
                                          {0xFE00, 512},
                                          {256, 512},
                                          {0x0E00, 512}}) {
        EXPECT_EQ(OpenStamped(65536, static_cast<std::uint16_t>(stamp)), expected) << stamp;
        EXPECT_EQ(Engine.SourceDisk.TotalSectors, 65536U / static_cast<unsigned>(expected))
            << "by the file's length, not by the stamped count";
    }
}

TEST_F(OpenSourceTest, ADeviceHasSectorsOfAPossibleSize) {
    for (const std::uint32_t bytes : {1U, 256U, 520U, 3072U, 65535U, 65536U, 0x80000000U}) {
        OpenDisk(std::make_shared<ByteVector>(65536), 512, bytes);
        EXPECT_EQ(TakeSource("/dev/odd"), kErrorSectorSize) << bytes;
        EXPECT_EQ(Engine.SourceDisk.MediaHandle, nullptr);
    }
    OpenDisk(std::make_shared<ByteVector>(65536), 512, 32768);
    EXPECT_EQ(TakeSource("/dev/large"), kErrorNone);
    EXPECT_EQ(Engine.SourceDisk.TotalSectors, 2U);
}

TEST_F(OpenSourceTest, RestsOfASectorAreOutOfReach) {
    for (const auto& [bytes, sectors] :
         {std::pair{700U, 1U}, {512U, 1U}, {1023U, 1U}, {511U, 0U}, {446U, 0U}}) {
        EXPECT_EQ(OpenStamped(bytes, 0), 512);
        EXPECT_EQ(Engine.SourceDisk.TotalSectors, sectors) << bytes;
        EXPECT_EQ(ReadPartitionTable(), 0);
    }
    WriteFileBytes(Path("empty"), {});
    EXPECT_EQ(OpenImageFile(Path("empty")), kErrorNone);
    EXPECT_EQ(Engine.SourceDisk.BytesPerSector, 512);
    EXPECT_EQ(Engine.SourceDisk.TotalSectors, 0U);
    EXPECT_TRUE(Reports.Log.empty());
}

TEST_F(OpenSourceTest, DescribesTheImage) {
    OpenStamped(1024, 0);
    EXPECT_EQ(Engine.ImagePath, Path("image"));
    EXPECT_EQ(Engine.ImageFolder, Path("image").substr(0, Path("image").rfind('/')));
    EXPECT_EQ(Engine.SourceDisk.Description,
              std::u16string(Engine.ImagePath.begin(), Engine.ImagePath.end()));
    EXPECT_FALSE(SourceIsDevice());
    EXPECT_EQ(OpenSource(Path("image")), kErrorNone);
    EXPECT_EQ(Engine.SourceDisk.TotalSectors, 2U);
}

TEST_F(OpenSourceTest, AFailedOpenLeavesNothingBehind) {
    for (const auto open : {OpenImageFile, OpenPhysicalDisk, OpenSource}) {
        OpenStamped(1024, 0);
        Engine.VolumeParams.ClusterBytes = 1;
        EXPECT_EQ(open(Path("missing")), kErrorFileNotFound);
        EXPECT_EQ(Engine.SourceDisk.MediaHandle, nullptr);
        EXPECT_EQ(EncodeDisk(Engine.SourceDisk), StoredDisk{});
        EXPECT_EQ(Engine.VolumeParams.ClusterBytes, 0U);
    }
    OpenStamped(1024, 0);
    EXPECT_NE(OpenPhysicalDisk(Path("image")), kErrorNone) << "an image is no disk";
    EXPECT_EQ(EncodeDisk(Engine.SourceDisk), StoredDisk{});
    EXPECT_NE(OpenSource(Path("")), kErrorNone) << "nor is a folder anything";
}

TEST_F(OpenSourceTest, AMediumThatGivesNothingIsToldFromABadFirstSector) {
    OpenDisk(NumberedSectors(100));
    for (const ErrorCode code : {kErrorCrc, kErrorIoDevice, kErrorNotReady}) {
        Plan->Rules = {{0, 1, code}};
        EXPECT_EQ(AskMedium().Answers, code != kErrorNotReady);
        Plan->Rules = {{0, 100, code}};
        EXPECT_FALSE(AskMedium().Answers);
    }
}

TEST_F(OpenSourceTest, FromAnImageToItsVolume) {
    VolumeBuilder volume;
    volume.WriteTo(Path("volume"));
    ASSERT_EQ(OpenSource(Path("volume")), kErrorNone);
    ASSERT_EQ(ReadPartitionTable(), 1);
    const PartitionCandidate& found = Engine.SourceDisk.Partitions.front();
    PartitionCandidate expected = CandidateOf(volume.Geometry());
    expected.TotalSectors += 1; // of the table's entry
    expected.VolumeSerial = volume.Geometry().Serial;
    EXPECT_EQ(EncodeCandidate(found, false), EncodeCandidate(expected, false));
}

} // namespace thntfs::test
