#include "support/MemoryFileStore.h"

#include <algorithm>

namespace thntfs::test {

namespace {

/// Shares its bytes with the store: they outlive a deletion, as those of an open file do.
class MemoryFile final : public File {
public:
    explicit MemoryFile(std::shared_ptr<std::vector<std::uint8_t>> bytes)
        : bytes_(std::move(bytes)) {}

    ErrorCode Write(ConstBytes bytes) override {
        const ErrorCode error = WriteAt(position_, bytes);
        position_ += error == kErrorNone ? bytes.size() : 0;
        return error;
    }

    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) override {
        if (offset > MemoryFileStore::kMaxBytes || bytes.size() > MemoryFileStore::kMaxBytes - offset) {
            return kErrorDiskFull;
        }
        const auto at = static_cast<std::size_t>(offset);
        bytes_->resize(std::max(bytes_->size(), at + bytes.size()));
        std::copy(bytes.begin(), bytes.end(), bytes_->begin() + static_cast<std::ptrdiff_t>(at));
        return kErrorNone;
    }

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got) override {
        const auto at = static_cast<std::size_t>(std::min<std::uint64_t>(offset, bytes_->size()));
        got = std::min(buffer.size(), bytes_->size() - at);
        std::copy_n(bytes_->begin() + static_cast<std::ptrdiff_t>(at), got, buffer.begin());
        return kErrorNone;
    }

    ErrorCode Size(std::uint64_t& bytes) override {
        bytes = bytes_->size();
        return kErrorNone;
    }

    ErrorCode Sync() override { return kErrorNone; }

private:
    std::shared_ptr<std::vector<std::uint8_t>> bytes_;
    std::uint64_t position_ = 0;
};

} // namespace

MemoryFileStore::~MemoryFileStore() {
    if (&Files() == this) {
        SetFileStore(nullptr);
    }
}

std::vector<std::uint8_t>& MemoryFileStore::Content(const std::string& path) {
    auto& bytes = files_[path];
    if (bytes == nullptr) {
        bytes = std::make_shared<std::vector<std::uint8_t>>();
    }
    return *bytes;
}

ErrorCode MemoryFileStore::Open(const std::string& path, FileMode mode, std::unique_ptr<File>& file) {
    file.reset();
    const bool exists = files_.contains(path);
    const bool creates =
        mode == FileMode::CreateNew || mode == FileMode::CreateAlways || mode == FileMode::CreateOwn;
    if (exists && mode == FileMode::CreateNew) {
        return kErrorFileExists;
    }
    if (!exists && !creates) {
        return kErrorFileNotFound;
    }
    if (creates) {
        Content(path).clear();
    }
    file = std::make_unique<MemoryFile>(files_[path]);
    return kErrorNone;
}

ErrorCode MemoryFileStore::Delete(const std::string& path) {
    return files_.erase(path) != 0 ? kErrorNone : kErrorFileNotFound;
}

} // namespace thntfs::test
