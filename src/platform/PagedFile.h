#pragma once

#include "platform/File.h"

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace thntfs {

/// A file seen through a bounded number of buffered pages, so that small reads and writes anywhere in it cost no
/// system call each. Changed pages are written when their place is needed, and by Flush. The destructor does
/// not write: who wants the changes calls Flush and looks at its result.
class PagedFile {
public:
    static constexpr std::size_t kPageBytes = 16384;

    /// Takes the file over. `maxPages` bounds the memory: kPageBytes each. `size` is the file's size in bytes.
    PagedFile(std::unique_ptr<File> file, std::size_t maxPages, std::uint64_t size);

    /// Reads up to buffer.size() bytes; `got` is less than asked only at the end of the file.
    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got);

    /// Writes all bytes; the file grows as needed.
    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes);

    /// Writes all changed pages in rising order.
    ErrorCode Flush();

    [[nodiscard]] std::uint64_t Size() const { return size_; }

private:
    struct Page {
        std::uint64_t Number = 0;
        bool Changed = false;
        bool Recent = false; ///< looked at since the hand last passed
        std::vector<std::uint8_t> Data;
    };

    ErrorCode FindPage(std::uint64_t number, Page*& page);
    ErrorCode LoadPage(std::uint64_t number, Page*& page);
    ErrorCode FreePlace(Page*& page);
    ErrorCode StorePage(Page& page);

    std::unique_ptr<File> file_;
    std::size_t maxPages_;
    std::uint64_t size_;
    std::uint64_t storedSize_; ///< bytes that the file itself holds
    std::vector<std::unique_ptr<Page>> pages_;
    std::unordered_map<std::uint64_t, Page*> index_;
    Page* last_ = nullptr; ///< the page used last, which is most often used next
    std::size_t hand_ = 0;
};

} // namespace thntfs
