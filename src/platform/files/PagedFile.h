#pragma once

#include "platform/system/BigBlock.h"
#include "platform/system/Bytes.h"
#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace thntfs {

class File;

/// A file seen through a bounded number of buffered pages, so that small reads and writes anywhere in it cost
/// no system call each. Changed pages are written when their place is needed, and by Flush. The destructor
/// does not write: who wants the changes calls Flush and looks at its result.
///
/// After a failure the object goes on working. No changed page is given up before it has been written, so a
/// call that failed may be made again.
class PagedFile {
public:
    static constexpr std::size_t kPageBytes = 4096;

    /// No offset reaches past this; it bounds the page table at 64 MiB.
    static constexpr std::uint64_t kMaxBytes = 1ULL << 38U;

    /// Takes the file over. `maxPages` bounds the memory: kPageBytes each, taken as they are needed; one page
    /// is the least. `size` is the file's size in bytes.
    PagedFile(std::unique_ptr<File> file, std::size_t maxPages, std::uint64_t size);
    ~PagedFile();
    PagedFile(const PagedFile&) = delete;
    PagedFile& operator=(const PagedFile&) = delete;

    /// Reads up to buffer.size() bytes; `got` is less than asked only at the end of the file or on failure.
    /// Fails with kErrorFileTooLarge past kMaxBytes, and with what the file answers.
    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got) {
        const std::uint64_t inPage = offset - lastStart_;
        if (inPage < lastBytes_ && buffer.size() <= lastBytes_ - inPage && offset + buffer.size() <= size_ &&
            !buffer.empty()) {
            std::memcpy(buffer.data(), last_->Data + inPage, buffer.size());
            got = buffer.size();
            return kErrorNone;
        }
        return ReadPages(offset, buffer, got);
    }

    /// Writes all bytes; the file grows as needed, and a gap reads as zeros. On failure a part may have been
    /// written. Fails with kErrorFileTooLarge past kMaxBytes, and with what the file answers.
    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) {
        const std::uint64_t inPage = offset - lastStart_;
        if (inPage < lastBytes_ && bytes.size() <= lastBytes_ - inPage && !bytes.empty()) {
            std::memcpy(last_->Data + inPage, bytes.data(), bytes.size());
            MarkWritten(offset + bytes.size());
            return kErrorNone;
        }
        return WritePages(offset, bytes);
    }

    /// The place of bytes that are about to be written, marked as written: the caller fills them all before
    /// any other call. Empty where they don't lie in the page used last; then they are to be written by
    /// WriteAt.
    Bytes PlaceInPage(std::uint64_t offset, std::size_t bytes) {
        const std::uint64_t inPage = offset - lastStart_;
        if (inPage >= lastBytes_ || bytes > lastBytes_ - inPage) {
            return {};
        }
        MarkWritten(offset + bytes);
        return {last_->Data + inPage, bytes};
    }

    /// Hints that a place will be written soon.
    void Prefetch(std::uint64_t offset) const {
        const std::uint64_t number = offset / kPageBytes;
        if (number < table_.size() && table_[number] != 0) {
            __builtin_prefetch(pages_[table_[number] - 1].Data + offset % kPageBytes, 1);
        }
    }

    /// Writes all changed pages in rising order. After a failure the pages not yet written stay changed.
    ErrorCode Flush();

    [[nodiscard]] std::uint64_t Size() const { return size_; }

private:
    struct Page {
        std::uint64_t Number = kNoPage;
        bool Changed = false;
        bool Recent = false; ///< used since the hand last passed
        std::uint8_t* Data =
            nullptr; ///< kPageBytes in one of blocks_: apart, so that a look-up touches little memory
    };

    /// Place in pages_ plus one of a page of the file, 0 where it is not buffered.
    using Slot = std::uint32_t;

    static constexpr std::uint64_t kNoPage = ~0ULL;
    static constexpr std::size_t kJoinedPages = 64;

    void MarkWritten(std::uint64_t end) {
        last_->Changed = true;
        size_ = end > size_ ? end : size_;
    }

    ErrorCode ReadPages(std::uint64_t offset, Bytes buffer, std::size_t& got);
    ErrorCode WritePages(std::uint64_t offset, ConstBytes bytes);
    ErrorCode UsePage(std::uint64_t number);
    ErrorCode LoadPage(std::uint64_t number, Page*& page);
    void AddPage();
    ErrorCode FillPage(std::uint64_t number, Page& page);
    ErrorCode FreePlace(Slot& slot);
    Slot ChooseVictim();
    void ForgetLast();
    ErrorCode StoreRun(std::uint64_t first);
    ErrorCode StoreBytes(std::uint64_t start, ConstBytes bytes);
    [[nodiscard]] Page* BufferedPage(std::uint64_t number);
    [[nodiscard]] std::size_t BytesInUse(std::uint64_t number) const;

    std::unique_ptr<File> file_;
    std::size_t maxPages_;
    std::uint64_t size_;
    std::uint64_t storedSize_; ///< bytes that the file itself holds
    std::vector<BigBlock> blocks_;
    std::vector<Page> pages_;
    std::vector<Slot> table_;          ///< by page number, as long as the highest page that was used
    std::vector<std::uint8_t> joined_; ///< neighbouring pages on their way to one write
    std::size_t hand_ = 0;

    // The page used last, which is most often used next. lastBytes_ is 0 while there is none.
    Page* last_ = nullptr;
    std::uint64_t lastStart_ = 0;
    std::uint64_t lastBytes_ = 0;
};

} // namespace thntfs
