#include "platform/files/File.h"
#include "platform/files/PartName.h"
#include "platform/files/Paths.h"
#include "platform/files/ReplacementFile.h"
#include "platform/files/posix/FileDescriptor.h"
#include "platform/files/posix/LifeLock.h"
#include "platform/files/posix/PosixFile.h"
#include "platform/system/posix/ErrnoMap.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace thntfs {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kKeptNameBytes = 200; // leaves room for what is appended
constexpr unsigned kMaxTries = 100;
constexpr mode_t kRights = 0777;

// What opening the target for writing would say. A name that is free is as good as a file.
ErrorCode TryTarget(const std::string& target) {
    std::error_code failure;
    const fs::file_status status = fs::status(target, failure);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        return fs::is_directory(status) ? kErrorDirectory : kErrorAccessDenied;
    }
    std::unique_ptr<File> older;
    const ErrorCode code = Files().Open(target, FileMode::OpenReadWrite, older);
    return code == kErrorFileNotFound ? kErrorNone : code;
}

fs::path FolderOf(const std::string& target) {
    const fs::path folder = fs::path(target).parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

/// Stem of the names of a target's parts.
std::string StemOf(const std::string& target) {
    return fs::path(target).filename().string().substr(0, kKeptNameBytes);
}

void RemovePartIfLeft(const std::string& path) {
    const FileDescriptor part = OpenDescriptor(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    struct stat status {};
    if (::fstat(part.Get(), &status) == 0 && S_ISREG(status.st_mode) && IsLeftBehind(part, path)) {
        ::unlink(path.c_str());
    }
}

void RemovePartsOf(const std::string& target) {
    const std::string stem = StemOf(target);
    std::error_code failure;
    for (fs::directory_iterator entry(FolderOf(target), failure), end; !failure && entry != end;
         entry.increment(failure)) {
        if (IsPartName(entry->path().filename().string(), stem)) {
            RemovePartIfLeft(entry->path().string());
        }
    }
}

/// A new name is on the disk only once its folder is. A folder that can't be opened or asked for that is left
/// alone.
ErrorCode SyncFolder(const fs::path& path) {
    const FileDescriptor folder = OpenDescriptor(path.c_str(), O_RDONLY | O_DIRECTORY);
    if (!folder.IsOpen() || ::fsync(folder.Get()) == 0 || errno == EINVAL || errno == ENOTSUP ||
        errno == EROFS) {
        return kErrorNone;
    }
    return FileErrorOfErrno(errno);
}

} // namespace

/// The file under its own name. Its lock stands until it has the target's, or is gone.
class ReplacementFile::Part {
public:
    Part() = default;
    ~Part() {
        if (!path_.empty()) {
            ::unlink(path_.c_str());
        }
    }
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

    ErrorCode Create(const std::string& target, std::unique_ptr<File>& file) {
        ErrorCode code = kErrorFileExists;
        for (unsigned i = 0; code == kErrorFileExists && i < kMaxTries; ++i) {
            code = TryCreate((FolderOf(target) / NewPartName(StemOf(target))).string());
        }
        FileDescriptor written(code == kErrorNone ? ::fcntl(lock_.Get(), F_DUPFD_CLOEXEC, 0) : -1);
        if (code != kErrorNone || !written.IsOpen()) {
            return code != kErrorNone ? code : FileErrorOfErrno(errno);
        }
        file = MakePosixFile(std::move(written));
        return Files().Admit(file);
    }

    // What only its owner could read must not become readable to all, or to another group.
    void TakeRightsOf(const std::string& older) const {
        struct stat status {};
        if (::stat(older.c_str(), &status) != 0) {
            return;
        }
        const bool sameOwners = ::fchown(lock_.Get(), status.st_uid, status.st_gid) == 0;
        (void)::fchmod(lock_.Get(), status.st_mode & kRights & ~(sameOwners ? 0U : unsigned{S_IRWXG}));
    }

    ErrorCode Rename(const std::string& target) {
        if (std::rename(path_.c_str(), target.c_str()) != 0) {
            return FileErrorOfErrno(errno);
        }
        path_.clear();
        return SyncFolder(FolderOf(target));
    }

private:
    ErrorCode TryCreate(const std::string& path) {
        FileDescriptor created =
            OpenDescriptor(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_NOCTTY, 0666);
        if (!created.IsOpen()) {
            return FileErrorOfErrno(errno);
        }
        if (!LockForLife(created, path)) {
            return kErrorFileExists;
        }
        lock_ = std::move(created);
        path_ = path;
        return kErrorNone;
    }

    std::string path_; ///< empty where there is no file of ours
    FileDescriptor lock_;
};

ReplacementFile::ReplacementFile() = default;
ReplacementFile::~ReplacementFile() = default;

ErrorCode ReplacementFile::Create(const std::string& target) {
    target_ = BehindLinks(target);
    const ErrorCode code = TryTarget(target_);
    if (code != kErrorNone) {
        return code;
    }
    RemovePartsOf(target_);
    part_ = std::make_unique<Part>();
    return part_->Create(target_, file_);
}

ErrorCode ReplacementFile::Commit() {
    ErrorCode code = file_->Sync();
    code = code == kErrorNone ? file_->Close() : code;
    if (code != kErrorNone) {
        return code;
    }
    part_->TakeRightsOf(target_);
    return part_->Rename(target_);
}

} // namespace thntfs
