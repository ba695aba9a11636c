#include "platform/files/PagedFile.h"

#include "engine/LittleEndian.h"
#include "support/FailingFileStore.h"
#include "support/MemoryFile.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace thntfs::test {

namespace {

constexpr std::size_t kPage = PagedFile::kPageBytes;

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
    std::size_t Below(std::size_t end) { return random_() % end; }

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
        const ConstBytes expected = Part(Model, offset, size);
        ASSERT_EQ(got, expected.size());
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), bytes.begin()));
    }

    std::mt19937 random_;
};

struct PagedFileTest : testing::Test {
    MemoryFile file_;
    FailingFileStore store_;
};

TEST_F(PagedFileTest, ActsLikeAPlainFileWhateverTheNumberOfPages) {
    for (const std::size_t maxPages : {0U, 1U, 2U, 3U, 7U, 64U}) {
        file_.Content.assign(maxPages * 5000, 0x5A);
        Twin twin(file_.Open(), maxPages, file_.Content, static_cast<unsigned>(maxPages));
        for (int i = 0; i < 5000; ++i) {
            ASSERT_NO_FATAL_FAILURE(twin.Step()) << "pages " << maxPages << " step " << i;
        }
        ASSERT_EQ(twin.Paged.Flush(), kErrorNone);
        EXPECT_EQ(file_.Content, twin.Model) << "pages " << maxPages;
    }
}

TEST_F(PagedFileTest, LosesNothingWhicheverCallFails) {
    std::uint64_t failing = 0;
    do {
        SCOPED_TRACE(failing);
        file_.Content.assign(6 * kPage + 100, 0x5A);
        store_.FailAt(failing);
        Twin twin(store_.Wrap(file_.Open()), 3, file_.Content, 5);
        for (int i = 0; i < 200; ++i) {
            ASSERT_NO_FATAL_FAILURE(twin.Step()) << i;
        }
        twin.Retry([&] { return twin.Paged.Flush(); });
        ASSERT_EQ(file_.Content, twin.Model);
    } while (failing++ == 0 || store_.Plan().Failures == 1);
    EXPECT_GT(failing, 50U);
}

TEST_F(PagedFileTest, APageThatGaveWayIsNotWrittenToAfterAFailedRead) {
    file_.Content.assign(2 * kPage, 0x5A);
    PagedFile paged(store_.Wrap(file_.Open()), 1, 2 * kPage);
    std::vector<std::uint8_t> bytes(1);
    std::size_t got = 0;
    ASSERT_EQ(paged.ReadAt(0, bytes, got), kErrorNone);
    store_.FailAt(1, kErrorIoDevice);
    ASSERT_EQ(paged.ReadAt(kPage, bytes, got), kErrorIoDevice);
    ASSERT_EQ(paged.WriteAt(0, std::vector<std::uint8_t>{1}), kErrorNone);
    ASSERT_EQ(paged.Flush(), kErrorNone);
    EXPECT_EQ(file_.Content[0], 1);
}

TEST_F(PagedFileTest, AppendsWithFewCallsAndReadsNothingBack) {
    PagedFile paged(store_.Wrap(file_.Open()), 256, 0);
    const std::vector<std::uint8_t> record(44, 1);
    for (std::uint64_t i = 0; i < 256 * kPage / record.size(); ++i) {
        ASSERT_EQ(paged.WriteAt(i * record.size(), record), kErrorNone);
    }
    ASSERT_EQ(store_.Plan().Calls, 0U);
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(paged.Flush(), kErrorNone);
        EXPECT_EQ(store_.Plan().Calls, 4U) << "256 pages in writes of 64, once";
    }
}

TEST_F(PagedFileTest, RefusesOffsetsThatNoFileReaches) {
    PagedFile paged(file_.Open(), 2, ~0ULL); // it is shorter than it was said to be
    std::vector<std::uint8_t> bytes(16, 1);
    std::size_t got = 0;
    EXPECT_EQ(paged.ReadAt(~0ULL - 20, bytes, got), kErrorFileTooLarge);
    EXPECT_EQ(paged.ReadAt(PagedFile::kMaxBytes - 8, bytes, got), kErrorFileTooLarge);
    EXPECT_EQ(paged.WriteAt(~0ULL - 7, bytes), kErrorFileTooLarge);
    EXPECT_EQ(paged.ReadAt(100, bytes, got), kErrorNone);
    EXPECT_EQ(bytes, std::vector<std::uint8_t>(16));
}

} // namespace

} // namespace thntfs::test
