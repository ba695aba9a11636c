#include "platform/files/PagedFile.h"

#include "platform/files/File.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace thntfs {

PagedFile::PagedFile(std::unique_ptr<File> file, std::size_t maxPages, std::uint64_t size)
    : file_(std::move(file))
    , maxPages_(std::clamp<std::size_t>(maxPages, 1, std::numeric_limits<Slot>::max() - 1))
    , size_(size)
    , storedSize_(size) {}

PagedFile::~PagedFile() = default;

ErrorCode PagedFile::ReadPages(std::uint64_t offset, Bytes buffer, std::size_t& got) {
    got = 0;
    if (offset >= size_ || buffer.empty()) {
        return kErrorNone;
    }
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), size_ - offset));
    if (offset > kMaxBytes || wanted > kMaxBytes - offset) {
        return kErrorFileTooLarge;
    }
    while (got < wanted) {
        const std::uint64_t position = offset + got;
        const ErrorCode error = UsePage(position / kPageBytes);
        if (error != kErrorNone) {
            return error;
        }
        const std::size_t inPage = position % kPageBytes;
        const std::size_t count = std::min(wanted - got, kPageBytes - inPage);
        std::memcpy(buffer.data() + got, last_->Data + inPage, count);
        got += count;
    }
    return kErrorNone;
}

ErrorCode PagedFile::WritePages(std::uint64_t offset, ConstBytes bytes) {
    if (offset > kMaxBytes || bytes.size() > kMaxBytes - offset) {
        return kErrorFileTooLarge;
    }
    std::size_t done = 0;
    while (done < bytes.size()) {
        const std::uint64_t position = offset + done;
        const ErrorCode error = UsePage(position / kPageBytes);
        if (error != kErrorNone) {
            return error;
        }
        const std::size_t inPage = position % kPageBytes;
        const std::size_t count = std::min(bytes.size() - done, kPageBytes - inPage);
        std::memcpy(last_->Data + inPage, bytes.data() + done, count);
        MarkWritten(position + count);
        done += count;
    }
    return kErrorNone;
}

ErrorCode PagedFile::UsePage(std::uint64_t number) {
    Page* page = BufferedPage(number);
    if (page == nullptr) {
        const ErrorCode error = LoadPage(number, page);
        if (error != kErrorNone) {
            return error;
        }
    }
    page->Recent = true;
    last_ = page;
    lastStart_ = number * kPageBytes;
    lastBytes_ = kPageBytes;
    return kErrorNone;
}

PagedFile::Page* PagedFile::BufferedPage(std::uint64_t number) {
    if (number >= table_.size() || table_[number] == 0) {
        return nullptr;
    }
    return &pages_[table_[number] - 1];
}

ErrorCode PagedFile::LoadPage(std::uint64_t number, Page*& page) {
    if (number >= table_.size()) {
        table_.resize(number + 1);
    }
    Slot slot = 0;
    ErrorCode error = FreePlace(slot);
    if (error != kErrorNone) {
        return error;
    }
    Page& place = pages_[slot - 1];
    error = FillPage(number, place);
    if (error != kErrorNone) {
        return error;
    }
    place.Number = number;
    place.Changed = false;
    table_[number] = slot;
    page = &place;
    return kErrorNone;
}

void PagedFile::AddPage() {
    constexpr std::size_t kPagesInBlock = kBigBlockBytes / kPageBytes;
    ForgetLast(); // the pages may move
    if (pages_.size() == blocks_.size() * kPagesInBlock) {
        blocks_.push_back(MakeBigBlock());
    }
    const std::size_t place = pages_.size() % kPagesInBlock;
    pages_.emplace_back().Data = blocks_.back().get() + place * kPageBytes;
}

ErrorCode PagedFile::FillPage(std::uint64_t number, Page& page) {
    const std::uint64_t start = number * kPageBytes;
    std::size_t got = 0;
    if (start < storedSize_) {
        const auto stored =
            static_cast<std::size_t>(std::min<std::uint64_t>(kPageBytes, storedSize_ - start));
        const ErrorCode error = file_->ReadAt(start, Bytes(page.Data, stored), got);
        if (error != kErrorNone) {
            return error;
        }
    }
    std::fill(page.Data + got, page.Data + kPageBytes, std::uint8_t{0});
    return kErrorNone;
}

/// A place that holds no page of the file. After a failed load there may be several.
ErrorCode PagedFile::FreePlace(Slot& slot) {
    if (pages_.size() < maxPages_) {
        AddPage();
        slot = static_cast<Slot>(pages_.size());
        return kErrorNone;
    }
    slot = ChooseVictim();
    Page& victim = pages_[slot - 1];
    if (victim.Changed) {
        const ErrorCode error = StoreRun(victim.Number);
        if (error != kErrorNone) {
            return error;
        }
    }
    if (victim.Number != kNoPage) {
        table_[victim.Number] = 0;
        victim.Number = kNoPage;
    }
    if (last_ == &victim) {
        ForgetLast();
    }
    return kErrorNone;
}

/// The next page under the hand that has not been used since the hand last passed.
PagedFile::Slot PagedFile::ChooseVictim() {
    while (true) {
        const std::size_t place = hand_;
        hand_ = (hand_ + 1) % pages_.size();
        Page& page = pages_[place];
        if (!page.Recent) {
            return static_cast<Slot>(place + 1);
        }
        page.Recent = false;
    }
}

void PagedFile::ForgetLast() {
    last_ = nullptr;
    lastBytes_ = 0;
}

ErrorCode PagedFile::Flush() {
    for (std::uint64_t number = 0; number < table_.size(); ++number) {
        const Page* page = BufferedPage(number);
        if (page != nullptr && page->Changed) {
            const ErrorCode error = StoreRun(number);
            if (error != kErrorNone) {
                return error;
            }
        }
    }
    return kErrorNone;
}

/// Writes a changed page, and the changed ones that follow it without a gap, in one write.
ErrorCode PagedFile::StoreRun(std::uint64_t first) {
    std::uint64_t end = first + 1;
    const Page* next = BufferedPage(end);
    while (end - first < kJoinedPages && next != nullptr && next->Changed) {
        next = BufferedPage(++end);
    }
    ConstBytes bytes = ConstBytes(BufferedPage(first)->Data, BytesInUse(first));
    if (end - first > 1) {
        joined_.clear();
        for (std::uint64_t number = first; number < end; ++number) {
            const std::uint8_t* data = BufferedPage(number)->Data;
            joined_.insert(joined_.end(), data, data + BytesInUse(number));
        }
        bytes = joined_;
    }
    const ErrorCode error = StoreBytes(first * kPageBytes, bytes);
    for (std::uint64_t number = first; error == kErrorNone && number < end; ++number) {
        BufferedPage(number)->Changed = false;
    }
    return error;
}

ErrorCode PagedFile::StoreBytes(std::uint64_t start, ConstBytes bytes) {
    const ErrorCode error = file_->WriteAt(start, bytes);
    if (error == kErrorNone) {
        storedSize_ = std::max(storedSize_, start + bytes.size());
    }
    return error;
}

std::size_t PagedFile::BytesInUse(std::uint64_t number) const {
    return static_cast<std::size_t>(std::min<std::uint64_t>(kPageBytes, size_ - number * kPageBytes));
}

} // namespace thntfs
