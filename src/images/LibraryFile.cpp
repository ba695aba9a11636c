#ifdef THNTFS_LIBBFIO

#include "images/LibraryFile.h"

#include "images/ImageFault.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace thntfs {

namespace {

LibraryFile& FileOf(intptr_t* file) { return *reinterpret_cast<LibraryFile*>(file); }

// The library's own way to say that it failed, without a text.
constexpr int kFailed = -1;

constexpr std::size_t kMostOpenFiles = 64;

// It is there for as long as the library has it.
int OpenCall(intptr_t* file, int /*flags*/, libbfio_error_t** /*error*/) {
    FileOf(file).Seek(0, SEEK_SET);
    return 1;
}

int CloseCall(intptr_t* /*file*/, libbfio_error_t** /*error*/) { return 0; }

ssize_t ReadCall(intptr_t* file, std::uint8_t* buffer, size_t size, libbfio_error_t** /*error*/) {
    return FileOf(file).Read(buffer, size);
}

off64_t SeekCall(intptr_t* file, off64_t offset, int whence, libbfio_error_t** /*error*/) {
    return FileOf(file).Seek(offset, whence);
}

int ExistsCall(intptr_t* /*file*/, libbfio_error_t** /*error*/) { return 1; }

int IsOpenCall(intptr_t* /*file*/, libbfio_error_t** /*error*/) { return 1; }

int SizeCall(intptr_t* file, size64_t* size, libbfio_error_t** /*error*/) {
    *size = FileOf(file).Size();
    return 1;
}

} // namespace

LibraryFile::LibraryFile(std::unique_ptr<Medium> medium, LibraryReads& reads)
    : medium_(std::move(medium))
    , reads_(reads)
    , bytes_(medium_->SizeBytes()) {
    MakeHandle();
}

LibraryFile::LibraryFile(std::function<std::unique_ptr<Medium>()> opener, LibraryReads& reads)
    : opener_(std::move(opener))
    , reads_(reads)
    , bytes_(opener_()->SizeBytes()) {
    MakeHandle();
}

LibraryFile::~LibraryFile() {
    if (handle_ != nullptr) {
        libbfio_handle_free(&handle_, nullptr);
    }
}

void LibraryFile::MakeHandle() {
    if (libbfio_handle_initialize(&handle_, reinterpret_cast<intptr_t*>(this), nullptr, nullptr, OpenCall,
                                  CloseCall, ReadCall, nullptr, SeekCall, ExistsCall, IsOpenCall, SizeCall,
                                  LIBBFIO_FLAG_IO_HANDLE_NON_MANAGED, nullptr) != 1) {
        throw NoMemoryForImage();
    }
}

// Another file under its name, or another length, is not what the library has looked at.
bool LibraryFile::Reopen() {
    if (medium_ != nullptr) {
        return true;
    }
    try {
        medium_ = opener_();
    } catch (const ImageFault&) {
        medium_.reset();
    }
    if (medium_ == nullptr || medium_->SizeBytes() != bytes_) {
        medium_.reset();
        reads_.Code = kErrorNotReady;
        return false;
    }
    if (reads_.Open.size() == kMostOpenFiles) {
        reads_.Open.front()->medium_.reset();
        reads_.Open.pop_front();
    }
    reads_.Open.push_back(this);
    return true;
}

ssize_t LibraryFile::Read(std::uint8_t* buffer, std::size_t size) {
    if (!Reopen()) {
        return kFailed;
    }
    const std::uint64_t left = Size() - std::min(offset_, Size());
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left, size));
    const ErrorCode code = medium_->ReadAt(offset_, Bytes(buffer, count));
    if (code != kErrorNone) {
        reads_.Code = code;
        return kFailed;
    }
    offset_ += count;
    return static_cast<ssize_t>(count);
}

std::int64_t LibraryFile::Seek(std::int64_t offset, int whence) {
    const std::int64_t from = whence == SEEK_SET   ? 0
                              : whence == SEEK_CUR ? static_cast<std::int64_t>(offset_)
                                                   : static_cast<std::int64_t>(Size());
    std::int64_t place = 0;
    if (__builtin_add_overflow(from, offset, &place) || place < 0) {
        return kFailed;
    }
    offset_ = static_cast<std::uint64_t>(place);
    return place;
}

void AppendToPool(libbfio_pool_t* pool, LibraryFile& file) {
    int entry = 0;
    if (libbfio_pool_append_handle(pool, &entry, file.Handle(), LIBBFIO_OPEN_READ, nullptr) != 1) {
        throw NoMemoryForImage();
    }
    file.GiveHandle();
}

ErrorCode LibraryMedium::ReadAt(std::uint64_t offset, Bytes buffer) {
    const std::uint64_t left = MediaBytes - std::min(offset, MediaBytes);
    buffer = buffer.first(static_cast<std::size_t>(std::min<std::uint64_t>(left, buffer.size())));
    while (!buffer.empty()) {
        Reads.Code = kErrorNone;
        const ssize_t got = Read(offset, buffer);
        if (got <= 0 || static_cast<std::size_t>(got) > buffer.size()) {
            return Reads.Code == kErrorNone ? kErrorCrc : Reads.Code;
        }
        offset += static_cast<std::size_t>(got);
        buffer = buffer.subspan(static_cast<std::size_t>(got));
    }
    return kErrorNone;
}

} // namespace thntfs

#endif
