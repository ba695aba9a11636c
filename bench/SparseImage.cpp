#include "SparseImage.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace thntfs::bench {

namespace {

constexpr std::size_t kGatherBytes = 4U << 20;

[[noreturn]] void ThrowErrno(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

SparseImage::SparseImage(const std::string& path)
    : handle_(::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644)) {
    if (handle_ < 0) {
        ThrowErrno(path);
    }
}

SparseImage::~SparseImage() { ::close(handle_); }

void SparseImage::WriteAt(std::uint64_t offset, ConstBytes bytes) const {
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(handle_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0) {
            ThrowErrno("write");
        }
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
}

void SparseImage::SetSize(std::uint64_t bytes) const {
    if (::ftruncate(handle_, static_cast<off_t>(bytes)) != 0) {
        ThrowErrno("truncate");
    }
}

GatheringWriter::GatheringWriter(const SparseImage& image, std::uint64_t offset)
    : image_(image)
    , offset_(offset) {
    pending_.reserve(kGatherBytes);
}

void GatheringWriter::Append(ConstBytes bytes) {
    if (pending_.size() + bytes.size() > kGatherBytes) {
        Flush();
    }
    pending_.insert(pending_.end(), bytes.begin(), bytes.end());
}

void GatheringWriter::Flush() {
    image_.WriteAt(offset_, pending_);
    offset_ += pending_.size();
    pending_.clear();
}

} // namespace thntfs::bench
