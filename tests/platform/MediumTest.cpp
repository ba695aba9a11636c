#include "platform/media/Medium.h"

#include "platform/files/File.h"
#include "platform/files/WorkFolder.h"
#include "support/LoopDevice.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <vector>

namespace thntfs::test {

namespace fs = std::filesystem;

namespace {

std::vector<std::uint8_t> Pattern(std::size_t size) {
    std::vector<std::uint8_t> bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 512);
    }
    return bytes;
}

class MediumTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(Folder.Create(), kErrorNone); }

    void MakeImage(const std::vector<std::uint8_t>& bytes) {
        std::unique_ptr<File> file;
        ASSERT_EQ(Files().Open(Image(), FileMode::CreateAlways, file), kErrorNone);
        ASSERT_EQ(file->Write(bytes), kErrorNone);
    }

    [[nodiscard]] std::string Image() const { return Folder.Path() + "/image"; }

    WorkFolder Folder;
};

/// A read of the pattern at any place gives the pattern, and past the end leaves the buffer alone.
void ExpectPattern(Medium& medium, const std::vector<std::uint8_t>& pattern, std::uint64_t offset,
                   std::size_t size) {
    std::vector<std::uint8_t> bytes(size, 0xEE);
    std::vector<std::uint8_t> expected = bytes;
    for (std::size_t i = 0; i < size && offset < pattern.size() && i < pattern.size() - offset; ++i) {
        expected[i] = pattern[static_cast<std::size_t>(offset) + i];
    }
    EXPECT_EQ(medium.ReadAt(offset, bytes), kErrorNone) << offset << " + " << size;
    EXPECT_EQ(bytes, expected) << offset << " + " << size;
}

} // namespace

TEST_F(MediumTest, ImageReadsToItsEndAndNoFurther) {
    const auto pattern = Pattern(10'000);
    MakeImage(pattern);
    const MediumResult result = OpenMedium(Image());
    ASSERT_EQ(result.Error, kErrorNone);
    EXPECT_EQ(result.Handle->SizeBytes(), 10'000U);
    EXPECT_EQ(result.Handle->DeviceSectorBytes(), 0U);
    for (const std::uint64_t offset :
         {0ULL, 511ULL, 9'728ULL, 9'999ULL, 10'000ULL, 1ULL << 40U, 1ULL << 63U, ~0ULL}) {
        for (const std::size_t size : {0U, 1U, 512U, 4096U, 20'000U}) {
            ExpectPattern(*result.Handle, pattern, offset, size);
        }
    }
}

TEST_F(MediumTest, ImageThatLostItsEndFailsThere) {
    MakeImage(Pattern(8192));
    const MediumResult result = OpenMedium(Image());
    ASSERT_NE(result.Handle, nullptr);
    fs::resize_file(Image(), 4096);
    std::vector<std::uint8_t> bytes(512);
    EXPECT_EQ(result.Handle->ReadAt(3584, bytes), kErrorNone);
    EXPECT_EQ(result.Handle->ReadAt(4096, bytes), kErrorCrc);
}

TEST_F(MediumTest, OnlyDisksAndImagesAreMedia) {
    EXPECT_EQ(OpenMedium(Folder.Path()).Error, kErrorDirectory);
    EXPECT_EQ(OpenMedium(Image()).Error, kErrorFileNotFound);
    EXPECT_EQ(OpenMedium("/dev/null").Error, kErrorInvalidParameter);
    if (OutputOf("mkfifo '" + Image() + "' && echo made") == "made") {
        EXPECT_EQ(OpenMedium(Image()).Error, kErrorInvalidParameter);
    }
}

TEST_F(MediumTest, LoopDeviceReadsBySectorAndInBulk) {
    const auto pattern = Pattern(1U << 20U);
    MakeImage(pattern);
    for (const std::uint32_t sector : {512U, 4096U}) {
        const auto loop = LoopDevice::Attach(Image(), "--read-only --sector-size " + std::to_string(sector));
        if (loop == nullptr) {
            GTEST_SKIP() << "no loop device here";
        }
        const MediumResult result = OpenMedium(loop->Path());
        ASSERT_EQ(result.Error, kErrorNone);
        EXPECT_EQ(result.Handle->SizeBytes(), pattern.size());
        EXPECT_EQ(result.Handle->DeviceSectorBytes(), sector);
        for (const std::uint64_t offset :
             {0ULL, 512ULL, 700ULL, 5000ULL, (1ULL << 20U) - 512, (1ULL << 20U) - 100}) {
            for (const std::size_t size : {1U, 512U, 4096U, 5000U}) {
                ExpectPattern(*result.Handle, pattern, offset, size);
            }
        }
    }
}

TEST_F(MediumTest, DeviceThatIsGoneIsNotReady) {
    MakeImage(Pattern(1U << 20U));
    auto loop = LoopDevice::Attach(Image());
    if (loop == nullptr) {
        GTEST_SKIP() << "no loop device here";
    }
    const MediumResult result = OpenMedium(loop->Path());
    ASSERT_NE(result.Handle, nullptr);
    fs::resize_file(Image(), 0);
    OutputOf("PATH=$PATH:/sbin:/usr/sbin losetup --set-capacity " + loop->Path() + " && echo");
    std::vector<std::uint8_t> bytes(4096);
    EXPECT_EQ(result.Handle->ReadAt(0, Bytes(bytes).first(512)), kErrorNotReady);
    EXPECT_EQ(result.Handle->ReadAt(0, bytes), kErrorNotReady);
    EXPECT_EQ(OpenMedium(loop->Path()).Error, kErrorNotReady);
}

} // namespace thntfs::test
