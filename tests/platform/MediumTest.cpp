#include "platform/media/LentDisk.h"
#include "support/LoopDevice.h"
#include "support/RunProgram.h"
#include "support/VolumeBuilderMedium.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace thntfs::test {

namespace {

struct MediumTest : testing::Test {
    void MakeImage(std::size_t bytes) { WriteFileBytes(image_, pattern_ = PatternBytes(bytes)); }

    /// A read of the pattern at any place gives the pattern, and past the end leaves the buffer alone.
    void ExpectPattern(Medium& medium, std::uint64_t offset, std::size_t size) {
        ByteVector bytes(size, 0xEE);
        ByteVector expected = bytes;
        const ConstBytes part = Part(pattern_, offset, size);
        std::copy(part.begin(), part.end(), expected.begin());
        EXPECT_EQ(medium.ReadAt(offset, bytes), kErrorNone) << offset << " + " << size;
        EXPECT_EQ(bytes, expected) << offset << " + " << size;
    }

    ScratchFolder scratch_;
    std::string image_ = scratch_ / "image";
    ByteVector pattern_;
};

TEST_F(MediumTest, ImageReadsToItsEndAndNoFurther) {
    MakeImage(10'000);
    const MediumResult result = OpenMedium(image_);
    ASSERT_EQ(result.Error, kErrorNone);
    EXPECT_EQ(result.Handle->SizeBytes(), 10'000U);
    EXPECT_EQ(result.Handle->DeviceSectorBytes(), 0U);
    for (const std::uint64_t offset : {0ULL, 511ULL, 9'999ULL, 10'000ULL, 1ULL << 40U, 1ULL << 63U, ~0ULL}) {
        for (const std::size_t size : {0U, 1U, 512U, 20'000U}) {
            ExpectPattern(*result.Handle, offset, size);
        }
    }
    fs::resize_file(image_, 4096); // it has lost its end
    ByteVector bytes(512);
    EXPECT_EQ(result.Handle->ReadAt(3584, bytes), kErrorNone);
    EXPECT_EQ(result.Handle->ReadAt(4096, bytes), kErrorCrc);
}

TEST_F(MediumTest, HolesEndWhereDataBegins) {
    constexpr std::size_t kHole = 1U << 16U;
    MakeImage(kHole);
    OutputOf("cd " + scratch_.Path() + " && truncate -s 64K holed && cat image >> holed");
    const MediumResult result = OpenMedium(scratch_ / "holed");
    pattern_.insert(pattern_.begin(), kHole, 0);
    for (const std::size_t offset : {kHole - 512, kHole, std::size_t{0}, 2 * kHole - 512}) {
        ExpectPattern(*result.Handle, offset, 512);
        ExpectPattern(*result.Handle, offset, kHole);
        ExpectPattern(*result.Handle, offset, 2 * kHole);
    }
}

TEST_F(MediumTest, OnlyDisksAndImagesAreMedia) {
    EXPECT_EQ(OpenMedium(scratch_.Path()).Error, kErrorDirectory);
    EXPECT_EQ(OpenMedium(image_).Error, kErrorFileNotFound);
    EXPECT_EQ(OpenMedium("/dev/null").Error, kErrorInvalidParameter);
    if (OutputOf("mkfifo '" + image_ + "' && echo made") == "made") {
        EXPECT_EQ(OpenMedium(image_).Error, kErrorInvalidParameter);
    }
}

TEST_F(MediumTest, LoopDeviceReadsBySectorAndInBulkUntilItIsGone) {
    for (const auto& [sector, lent] : {std::pair{512U, false}, {512U, true}, {4096U, false}, {4096U, true}}) {
        MakeImage(1U << 20U);
        const auto loop = LoopDevice::Attach(image_, "--read-only --sector-size " + std::to_string(sector));
        if (loop == nullptr) {
            GTEST_SKIP() << "no loop device here";
        }
        const MediumResult result =
            lent ? OpenMediumOn(OpenDescriptor(loop->Path().c_str(), O_RDONLY), loop->Path())
                 : OpenMedium(loop->Path());
        ASSERT_EQ(result.Error, kErrorNone);
        EXPECT_EQ(result.Handle->SizeBytes(), pattern_.size());
        EXPECT_EQ(result.Handle->DeviceSectorBytes(), sector);
        for (const std::uint64_t offset : {0U, 512U, 700U, 5000U, (1U << 20U) - 512, (1U << 20U) - 100}) {
            for (const std::size_t size : {1U, 512U, 4096U, 5000U}) {
                ExpectPattern(*result.Handle, offset, size);
            }
        }
        for (const auto& [path, mode] : {std::pair{loop->Path(), O_WRONLY}, {"/dev/zero", O_RDONLY}}) {
            EXPECT_EQ(OpenMediumOn(OpenDescriptor(path.c_str(), mode), loop->Path()).Error,
                      kErrorInvalidHandle)
                << path;
        }
        EXPECT_EQ(OpenMediumOn(FileDescriptor(), loop->Path()).Error, kErrorInvalidHandle);
        fs::resize_file(image_, 0);
        OutputOf("PATH=$PATH:/sbin:/usr/sbin losetup --set-capacity " + loop->Path() + " && echo");
        ByteVector bytes(4096);
        EXPECT_EQ(result.Handle->ReadAt(0, Bytes(bytes).first(512)), kErrorNotReady);
        EXPECT_EQ(result.Handle->ReadAt(0, bytes), kErrorNotReady);
        EXPECT_EQ(OpenMedium(loop->Path()).Error, kErrorNotReady);
    }
}

// Without turns one's unaligned reads would fail while the other is past the page cache.
TEST_F(MediumTest, ALentDiskIsReadByTwoProcesses) {
    MakeImage(1U << 20U);
    const auto loop = LoopDevice::Attach(image_, "--read-only");
    if (loop == nullptr) {
        GTEST_SKIP() << "no loop device here";
    }
    EXPECT_EQ(OpenMedium(loop->Path()).Handle->Lent(), nullptr);
    const MediumResult result = OpenMediumOn(OpenDescriptor(loop->Path().c_str(), O_RDONLY), loop->Path());
    const std::string word = WordForLent(*result.Handle->Lent());
    for (const std::string& other : {word + "0", word.substr(0, word.find(',')), std::string("x,1")}) {
        EXPECT_FALSE(LentDiskOf(other).Disk.IsOpen()) << other;
    }
    const auto readOn = [this](Medium& medium) {
        for (int i = 0; i < 3000; ++i) {
            ExpectPattern(medium, 700, 512);
            ExpectPattern(medium, 777, 9000);
        }
    };
    const pid_t child = ::fork();
    if (child == 0) {
        KeepForProgram(*result.Handle->Lent());
        const LentDisk& handed = *result.Handle->Lent();
        const bool kept = ::fcntl(handed.Disk.Get(), F_GETFD) + ::fcntl(handed.Turns.Get(), F_GETFD) == 0;
        LentDisk lent = LentDiskOf(word);
        const bool ours = ::fcntl(lent.Turns.Get(), F_GETFD) == FD_CLOEXEC;
        const MediumResult same = OpenMediumOn(std::move(lent.Disk), loop->Path(), std::move(lent.Turns));
        readOn(*same.Handle);
        ::_exit(kept && ours && !HasFailure() ? 0 : 1);
    }
    readOn(*result.Handle);
    int status = 1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    ::fcntl(result.Handle->Lent()->Disk.Get(), F_SETFL, O_DIRECT); // as one that is killed leaves it
    ExpectPattern(*result.Handle, 777, 9000);
    pattern_[600] ^= 0xFFU; // behind the cache's back
    WriteFileBytes(image_, pattern_);
    ExpectPattern(*result.Handle, 512, 512);
    EXPECT_EQ(::fcntl(result.Handle->Lent()->Disk.Get(), F_GETFL) & O_DIRECT, 0)
        << "who writes by it isn't asked";
    const auto other = LoopDevice::Attach(image_, "--read-only");
    EXPECT_EQ(OpenMediumOn(OpenDescriptor(other->Path().c_str(), O_RDONLY), loop->Path()).Error,
              kErrorInvalidHandle);
}

} // namespace

} // namespace thntfs::test
