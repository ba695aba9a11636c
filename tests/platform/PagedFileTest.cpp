#include "platform/files/PagedFile.h"

#include "platform/files/WorkFolder.h"
#include "support/FailingFileStore.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <utility>

namespace thntfs::test {

namespace {

constexpr std::size_t kPage = PagedFile::kPageBytes;

class PagedFileTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(folder_.Create(), kErrorNone); }

    [[nodiscard]] std::string Path() const { return folder_.Path() + "/paged"; }

    std::unique_ptr<File> Open(FileMode mode) {
        std::unique_ptr<File> file;
        EXPECT_EQ(Files().Open(Path(), mode, file), kErrorNone);
        return file;
    }

    std::vector<std::uint8_t> Stored() {
        const auto file = Open(FileMode::OpenRead);
        std::uint64_t size = 0;
        EXPECT_EQ(file->Size(size), kErrorNone);
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
        std::size_t got = 0;
        EXPECT_EQ(file->ReadAt(0, bytes, got), kErrorNone);
        EXPECT_EQ(got, bytes.size());
        return bytes;
    }

    FailingFileStore Store;

private:
    WorkFolder folder_;
};

/// The same work on a paged file and on a plain vector. A call that fails is made again, once.
class Twin {
public:
    Twin(std::unique_ptr<File> file, std::size_t maxPages, std::vector<std::uint8_t> start, unsigned seed)
        : Paged(std::move(file), maxPages, start.size())
        , Model(std::move(start))
        , random_(seed) {}

    void Step() {
        const std::size_t size = Below(20) == 0 ? Below(3 * kPage) : Below(200);
        const std::size_t offset = Below(Model.size() + (Below(50) == 0 ? 2 * kPage : 100));
        if (Below(3) == 0) {
            Write(offset, size);
        } else if (Below(500) == 0) {
            Retry([&] { return Paged.Flush(); });
        } else {
            Read(offset, size);
        }
        ASSERT_EQ(Paged.Size(), Model.size());
    }

    template <typename Call>
    void Retry(Call call) {
        if (call() != kErrorNone) {
            ASSERT_EQ(call(), kErrorNone);
        }
    }

    PagedFile Paged;
    std::vector<std::uint8_t> Model;

private:
    std::size_t Below(std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_);
    }

    void Write(std::size_t offset, std::size_t size) {
        std::vector<std::uint8_t> bytes(size);
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random_()); });
        Retry([&] { return Paged.WriteAt(offset, bytes); });
        if (size > 0) {
            Model.resize(std::max(Model.size(), offset + size));
            std::copy(bytes.begin(), bytes.end(), Model.begin() + static_cast<std::ptrdiff_t>(offset));
        }
    }

    void Read(std::size_t offset, std::size_t size) {
        std::vector<std::uint8_t> bytes(size, 0xAA);
        std::size_t got = 0;
        Retry([&] { return Paged.ReadAt(offset, bytes, got); });
        ASSERT_EQ(got, offset < Model.size() ? std::min(size, Model.size() - offset) : 0);
        ASSERT_TRUE(std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(got),
                               Model.begin() + static_cast<std::ptrdiff_t>(std::min(offset, Model.size()))));
    }

    std::mt19937 random_;
};

} // namespace

TEST_F(PagedFileTest, ActsLikeAPlainFileWhateverTheNumberOfPages) {
    for (const std::size_t maxPages : {0U, 1U, 2U, 3U, 7U, 64U}) {
        std::vector<std::uint8_t> start(maxPages * 5000, 0x5A);
        ASSERT_EQ(Open(FileMode::CreateAlways)->Write(start), kErrorNone);
        Twin twin(Open(FileMode::OpenReadWrite), maxPages, start, static_cast<unsigned>(maxPages));
        for (int i = 0; i < 5000; ++i) {
            ASSERT_NO_FATAL_FAILURE(twin.Step()) << "pages " << maxPages << " step " << i;
        }
        ASSERT_EQ(twin.Paged.Flush(), kErrorNone);
        EXPECT_EQ(Stored(), twin.Model) << "pages " << maxPages;
    }
}

TEST_F(PagedFileTest, LosesNothingWhicheverCallFails) {
    const auto run = [&](std::uint64_t failing) {
        const std::vector<std::uint8_t> start(6 * kPage + 100, 0x5A);
        auto file = Open(FileMode::CreateAlways);
        ASSERT_EQ(file->Write(start), kErrorNone);
        Store.FailAt(failing, kErrorDiskFull);
        Twin twin(Store.Wrap(std::move(file)), 3, start, 5);
        for (int i = 0; i < 200; ++i) {
            ASSERT_NO_FATAL_FAILURE(twin.Step()) << "failing call " << failing << " step " << i;
        }
        twin.Retry([&] { return twin.Paged.Flush(); });
        EXPECT_EQ(Stored(), twin.Model) << "failing call " << failing;
        EXPECT_EQ(Store.Plan().Failures, failing == 0 ? 0U : 1U);
    };
    run(0);
    const std::uint64_t calls = Store.Plan().Calls;
    ASSERT_GT(calls, 50U);
    for (std::uint64_t failing = 1; failing <= calls; ++failing) {
        ASSERT_NO_FATAL_FAILURE(run(failing));
    }
}

TEST_F(PagedFileTest, KeepsWhatAFullDiskRefused) {
    auto file = Open(FileMode::CreateAlways);
    Store.FailAt(1, kErrorDiskFull, true);
    PagedFile paged(Store.Wrap(std::move(file)), 2, 0);
    std::vector<std::uint8_t> bytes(2 * kPage, 7);
    ASSERT_EQ(paged.WriteAt(0, bytes), kErrorNone);
    EXPECT_EQ(paged.WriteAt(2 * kPage, ConstBytes(bytes).first(1)), kErrorDiskFull);
    EXPECT_EQ(paged.Flush(), kErrorDiskFull);
    EXPECT_EQ(paged.Size(), 2 * kPage);

    std::vector<std::uint8_t> back(bytes.size());
    std::size_t got = 0;
    EXPECT_EQ(paged.ReadAt(0, back, got), kErrorNone);
    EXPECT_EQ(back, bytes);

    Store.FailAt(0);
    EXPECT_EQ(paged.Flush(), kErrorNone);
    EXPECT_EQ(Stored(), bytes);
}

TEST_F(PagedFileTest, AppendsWithFewCallsAndReadsNothingBack) {
    Store.FailAt(0);
    PagedFile paged(Store.Wrap(Open(FileMode::CreateAlways)), 256, 0);
    Store.FailAt(0);
    const std::vector<std::uint8_t> record(44, 1);
    const std::uint64_t records = 256 * kPage / record.size();
    for (std::uint64_t i = 0; i < records; ++i) {
        ASSERT_EQ(paged.WriteAt(i * record.size(), record), kErrorNone);
    }
    ASSERT_EQ(Store.Plan().Calls, 0U);
    ASSERT_EQ(paged.Flush(), kErrorNone);
    EXPECT_EQ(Store.Plan().Calls, 4U) << "256 pages in writes of 64";
    ASSERT_EQ(paged.Flush(), kErrorNone);
    EXPECT_EQ(Store.Plan().Calls, 4U);
}

TEST_F(PagedFileTest, RefusesOffsetsThatNoFileReaches) {
    PagedFile paged(Open(FileMode::CreateAlways), 2, ~0ULL);
    std::vector<std::uint8_t> bytes(16);
    std::size_t got = 0;
    EXPECT_EQ(paged.ReadAt(~0ULL - 20, bytes, got), kErrorFileTooLarge);
    EXPECT_EQ(paged.ReadAt(PagedFile::kMaxBytes - 8, bytes, got), kErrorFileTooLarge);
    EXPECT_EQ(paged.WriteAt(~0ULL - 7, bytes), kErrorFileTooLarge);
    // The file is shorter than it was said to be.
    EXPECT_EQ(paged.ReadAt(100, bytes, got), kErrorNone);
    EXPECT_EQ(bytes, std::vector<std::uint8_t>(16));
}

} // namespace thntfs::test
