#include "partitions/OpenSource.h"

#include "partitions/PartitionTable.h"
#include "platform/files/WorkFolder.h"
#include "platform/system/Text.h"
#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

class OpenSourceTest : public EngineFixture {
protected:
    OpenSourceTest() { EXPECT_EQ(folder_.Create(), kErrorNone); }

    void OpenImageOf(const ByteVector& bytes) {
        WriteFileBytes(Path("image"), bytes);
        EXPECT_EQ(OpenImageFile(Path("image")), kErrorNone);
    }

    /// Opens an image with a stamp; gives the sector size that it gets.
    std::uint16_t OpenStamped(unsigned stamp) {
        ByteVector image(65536);
        StampImage(image, 99, static_cast<std::uint16_t>(stamp));
        OpenImageOf(image);
        return Engine.SourceDisk.BytesPerSector;
    }

    [[nodiscard]] std::string Path(const std::string& name) const { return folder_.Path() + "/" + name; }

    WorkFolder folder_;
};

} // namespace

TEST_F(OpenSourceTest, ASectorSizeIsStampedOr512) {
    for (const unsigned stamp : {512, 1024, 2048, 4096}) {
        EXPECT_EQ(OpenStamped(stamp), stamp);
        EXPECT_EQ(Engine.SourceDisk.TotalSectors, 65536U / stamp) << "not the stamped count";
    }
    for (const unsigned stamp : {0, 256, 0x0E00, 1536, 3072, 0xFE00}) {
        EXPECT_EQ(OpenStamped(stamp), 512) << stamp;
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
         {std::pair{1023U, 1U}, {512U, 1U}, {511U, 0U}, {446U, 0U}, {0U, 0U}}) {
        OpenImageOf(ByteVector(bytes));
        EXPECT_EQ(Engine.SourceDisk.BytesPerSector, 512);
        EXPECT_EQ(Engine.SourceDisk.TotalSectors, sectors) << bytes;
        EXPECT_EQ(ReadPartitionTable(), 0);
    }
    EXPECT_TRUE(Reports.Log.empty());
}

TEST_F(OpenSourceTest, AFailedOpenLeavesNothingBehind) {
    for (const auto open : {OpenImageFile, OpenPhysicalDisk, OpenSource}) {
        OpenStamped(0);
        Engine.VolumeParams.ClusterBytes = 1;
        EXPECT_EQ(open(Path("missing")), kErrorFileNotFound);
        EXPECT_EQ(EncodeDisk(Engine.SourceDisk), StoredDisk{});
        EXPECT_EQ(Engine.VolumeParams.ClusterBytes, 0U);
    }
    OpenStamped(0);
    EXPECT_NE(OpenPhysicalDisk(Path("image")), kErrorNone) << "an image is no disk";
    EXPECT_EQ(Engine.SourceDisk.MediaHandle, nullptr);
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
    EXPECT_FALSE(SourceIsDevice());
    EXPECT_EQ(Engine.ImagePath, Path("volume"));
    EXPECT_EQ(Engine.ImageFolder, folder_.Path());
    EXPECT_EQ(NarrowText(Engine.SourceDisk.Description), Path("volume"));
    ASSERT_EQ(ReadPartitionTable(), 1);
    const PartitionCandidate& found = Engine.SourceDisk.Partitions.front();
    PartitionCandidate expected = CandidateOf(volume.Geometry());
    expected.TotalSectors += 1; // of the table's entry
    expected.VolumeSerial = volume.Geometry().Serial;
    EXPECT_EQ(EncodeCandidate(found, false), EncodeCandidate(expected, false));
}

} // namespace thntfs::test
