#include "support/MemoryFile.h"

#include "engine/LittleEndian.h"
#include "platform/files/File.h"

#include <algorithm>
#include <map>

namespace thntfs::test {

class MemoryFile::Handle final : public File {
public:
    explicit Handle(MemoryFile& file)
        : file_(file) {}

    ErrorCode Write(ConstBytes bytes) override { return WriteAt(file_.Content.size(), bytes); }
    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) override {
        const bool fits = offset <= file_.Room && bytes.size() <= file_.Room - offset;
        const ErrorCode code = file_.OnCall ? file_.OnCall() : fits ? kErrorNone : kErrorDiskFull;
        if (code == kErrorNone) {
            file_.Writes.push_back({offset, bytes.size()});
            Put(static_cast<std::size_t>(offset), bytes);
        } else if (fits && code != kErrorInvalidUserBuffer) {
            Put(static_cast<std::size_t>(offset), bytes.first(bytes.size() / 2));
        }
        return code;
    }
    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got) override {
        const ConstBytes from = Part(file_.Content, offset, buffer.size());
        got = from.size();
        std::copy(from.begin(), from.end(), buffer.begin());
        return kErrorNone;
    }
    ErrorCode Size(std::uint64_t& bytes) override {
        bytes = file_.Content.size();
        return kErrorNone;
    }
    ErrorCode SetSize(std::uint64_t bytes) override {
        if (bytes > file_.Room) {
            return kErrorDiskFull;
        }
        file_.Content.resize(static_cast<std::size_t>(bytes));
        return kErrorNone;
    }
    ErrorCode Sync() override {
        const ErrorCode code = file_.OnCall ? file_.OnCall() : kErrorNone;
        if (code == kErrorNone) {
            file_.Synced = file_.Content;
        }
        return code;
    }

    void Reserve(std::uint64_t offset, std::uint64_t bytes) override { file_.Reserved = offset + bytes; }
    void ReleaseReserve() override { file_.Reserved = 0; }

private:
    void Put(std::size_t offset, ConstBytes bytes) {
        file_.Content.resize(std::max(file_.Content.size(), offset + bytes.size()));
        std::copy(bytes.begin(), bytes.end(), file_.Content.begin() + static_cast<std::ptrdiff_t>(offset));
    }

    MemoryFile& file_;
};

MemoryFile::MemoryFile()
    : handle_(std::make_unique<Handle>(*this)) {}
MemoryFile::~MemoryFile() = default;

std::unique_ptr<File> MemoryFile::Open() { return std::make_unique<Handle>(*this); }

void MemoryFile::Clear() {
    Content.clear();
    Synced.clear();
    Writes.clear();
}

namespace {

class MemoryFileStore final : public FileStore {
public:
    ErrorCode Open(const std::string& path, FileMode mode, std::unique_ptr<File>& file) override {
        if (mode == FileMode::CreateOwn) {
            Content[path].Clear();
        }
        const bool isThere = Content.contains(path);
        file = isThere ? Content[path].Open() : nullptr;
        return isThere ? kErrorNone : kErrorFileNotFound;
    }
    ErrorCode Delete(const std::string& path) override {
        return Content.erase(path) != 0 ? kErrorNone : kErrorFileNotFound;
    }

    std::map<std::string, MemoryFile> Content;
};

MemoryFileStore& Store() {
    static MemoryFileStore store;
    return store;
}

} // namespace

void UseFilesInMemory() { SetFileStore(&Store()); }
MemoryFile& FileInMemory(const std::string& path) { return Store().Content[path]; }

} // namespace thntfs::test
