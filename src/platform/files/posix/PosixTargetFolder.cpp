#include "platform/files/File.h"
#include "platform/files/PartName.h"
#include "platform/files/TargetFolder.h"
#include "platform/files/posix/FileDescriptor.h"
#include "platform/files/posix/FolderNames.h"
#include "platform/files/posix/LifeLock.h"
#include "platform/files/posix/PartFiles.h"
#include "platform/files/posix/PosixFile.h"
#include "platform/files/posix/SetDates.h"
#include "platform/files/posix/SyncRoad.h"
#include "platform/system/posix/ErrnoMap.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace thntfs {

namespace {

/// A file system that dislikes a name (vfat and its colons) says EINVAL.
ErrorCode NameError(int number) { return number == EINVAL ? kErrorInvalidName : FileErrorOfErrno(number); }

/// renameat2 that replaces nothing, for file systems without it too: a link where there are links, else a
/// name that is taken first and then replaced.
bool RenameToFreeName(int folder, const char* from, const char* to) {
    if (::renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) {
        return false;
    }
    if (::linkat(folder, from, folder, to, 0) == 0) {
        (void)::unlinkat(folder, from, 0);
        return true;
    }
    if (errno == EEXIST ||
        !OpenDescriptorAt(folder, to, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0666).IsOpen()) {
        return false;
    }
    if (::renameat(folder, from, folder, to) == 0) {
        return true;
    }
    const int failure = errno;
    (void)::unlinkat(folder, to, 0);
    errno = failure;
    return false;
}

/// How what is written to a folder's file system is synced.
struct FileSystem {
    dev_t Device = 0;
    bool SyncsAsWhole = false;
};

FileSystem FileSystemOf(int folder) {
    struct stat status {};
    if (::fstat(folder, &status) != 0) {
        return {};
    }
    return {status.st_dev, SyncsAsWhole(folder)};
}

class PosixTargetFolder final : public TargetFolder {
public:
    /// `system` is that of the folder that OpenTargetFolder gave.
    PosixTargetFolder(FileDescriptor descriptor, FileSystem system)
        : descriptor_(std::move(descriptor))
        , system_(system) {}

    ErrorCode MakeSubfolder(const std::string& name, std::unique_ptr<TargetFolder>& folder) override {
        if (!IsPlainName(name)) {
            folder.reset();
            return kErrorInvalidName;
        }
        const bool made = ::mkdirat(descriptor_.Get(), name.c_str(), 0777) == 0;
        if (!made && errno != EEXIST) {
            folder.reset();
            return NameError(errno);
        }
        FileDescriptor opened;
        ErrorCode error = Open(name, opened);
        if (error == kErrorNone && !IsOneFolder(name, opened.Get(), made)) {
            error = kErrorFileExists;
        }
        if (error == kErrorNone && !made) {
            RemoveLeftParts(opened.Get());
        }
        GiveFolder(error, std::move(opened), folder);
        return error;
    }

    ErrorCode OpenSubfolder(const std::string& name, std::unique_ptr<TargetFolder>& folder) override {
        FileDescriptor opened;
        const ErrorCode error = Open(name, opened);
        GiveFolder(error, std::move(opened), folder);
        return error;
    }

    [[nodiscard]] bool Has(const std::string& name) const override {
        struct stat status {};
        return IsPlainName(name) &&
               ::fstatat(descriptor_.Get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    }

    ErrorCode CreateFile(const std::string& name, std::unique_ptr<File>& file) override {
        file.reset();
        FileDescriptor created;
        const ErrorCode error = Create(name, created);
        return error == kErrorNone ? HandOver(name, std::move(created), file) : error;
    }

    ErrorCode CreatePart(std::string& name, std::unique_ptr<File>& file) override {
        file.reset();
        FileDescriptor created;
        const ErrorCode error = OpenPart(name, created);
        return error == kErrorNone ? HandOver(name, std::move(created), file) : error;
    }

    ErrorCode NamePart(const std::string& part, const std::string& name) override {
        if (!IsPlainName(part) || !IsPlainName(name)) {
            return kErrorInvalidName;
        }
        return RenameToFreeName(descriptor_.Get(), part.c_str(), name.c_str()) ? kErrorNone
                                                                               : NameError(errno);
    }

    ErrorCode LinkFile(const std::string& name, TargetFolder& folder, const std::string& newName) override {
        auto* const other = dynamic_cast<PosixTargetFolder*>(&folder);
        if (other == nullptr || !IsPlainName(name) || !IsPlainName(newName)) {
            return kErrorInvalidName;
        }
        const int place = other->descriptor_.Get();
        return ::linkat(descriptor_.Get(), name.c_str(), place, newName.c_str(), 0) == 0 ? kErrorNone
                                                                                         : NameError(errno);
    }

    void SetDates(const FileDates& dates) override { SetDatesOf(descriptor_.Get(), dates); }

    ErrorCode DeleteFile(const std::string& name) override {
        if (!IsPlainName(name)) {
            return kErrorInvalidName;
        }
        return ::unlinkat(descriptor_.Get(), name.c_str(), 0) == 0 ? kErrorNone : NameError(errno);
    }

    [[nodiscard]] std::optional<std::uint64_t> FreeBytes() const override {
        struct statvfs space {};
        if (::fstatvfs(descriptor_.Get(), &space) != 0) {
            return std::nullopt;
        }
        return static_cast<std::uint64_t>(space.f_bavail) * space.f_frsize;
    }

    bool KeepsHoles() override {
        std::string name;
        FileDescriptor part;
        if (OpenPart(name, part) != kErrorNone) {
            return false;
        }
        struct stat status {};
        const bool keeps = ::ftruncate(part.Get(), kHoleBytes) == 0 && ::fstat(part.Get(), &status) == 0 &&
                           status.st_blocks * 512 < kHoleBytes;
        (void)::unlinkat(descriptor_.Get(), name.c_str(), 0);
        return keeps;
    }

    ErrorCode Sync() override { return SyncAsWhole(descriptor_.Get()); }

private:
    static constexpr unsigned kMaxPartTries = 100;
    static constexpr off_t kHoleBytes = 1 << 20;

    ErrorCode Open(const std::string& name, FileDescriptor& opened) {
        if (!IsPlainName(name)) {
            return kErrorInvalidName;
        }
        opened = OpenDescriptorAt(descriptor_.Get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (opened.IsOpen()) {
            return kErrorNone;
        }
        return errno == ENOTDIR || errno == ELOOP ? kErrorFileExists : NameError(errno);
    }

    /// `folder` may own this very object, so it changes last.
    void GiveFolder(ErrorCode error, FileDescriptor opened, std::unique_ptr<TargetFolder>& folder) const {
        const FileSystem system = SystemBelow(opened.Get());
        folder =
            error == kErrorNone ? std::make_unique<PosixTargetFolder>(std::move(opened), system) : nullptr;
    }

    /// The target's Sync doesn't reach a file system that is mounted below it.
    [[nodiscard]] FileSystem SystemBelow(int folder) const {
        struct stat status {};
        const bool same = ::fstat(folder, &status) == 0 && status.st_dev == system_.Device;
        return same ? system_ : FileSystem{};
    }

    ErrorCode Create(const std::string& name, FileDescriptor& created) {
        if (!IsPlainName(name)) {
            return kErrorInvalidName;
        }
        created = OpenDescriptorAt(descriptor_.Get(), name.c_str(),
                                   O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_NOCTTY, 0666);
        return created.IsOpen() ? kErrorNone : NameError(errno);
    }

    ErrorCode OpenPart(std::string& name, FileDescriptor& created) {
        ErrorCode error = kErrorFileExists;
        for (unsigned i = 0; error == kErrorFileExists && i < kMaxPartTries; ++i) {
            name = NewPartName("");
            error = Create(name, created);
            if (error == kErrorNone && !LockForLife(created, name, descriptor_.Get())) {
                error = kErrorFileExists;
            }
        }
        return error;
    }

    ErrorCode HandOver(const std::string& name, FileDescriptor created, std::unique_ptr<File>& file) {
        file = MakePosixFile(std::move(created), system_.SyncsAsWhole ? AtClose::Nothing : AtClose::Sync);
        const ErrorCode error = Files().Admit(file);
        if (error != kErrorNone) {
            file.reset();
            ::unlinkat(descriptor_.Get(), name.c_str(), 0);
        }
        return error;
    }

    /// False where the folder that has been opened by a name carries another one: to some file systems "Docs"
    /// and "docs" are one name. What this object has opened before is known by its number, the rest by the
    /// list of names.
    bool IsOneFolder(const std::string& name, int opened, bool made) {
        struct stat status {};
        if (::fstat(opened, &status) != 0) {
            return made;
        }
        const auto known = opened_.find(status.st_ino);
        const bool one = made || (known != opened_.end() ? known->second == name : StandsInFolder(name));
        if (one) {
            opened_[status.st_ino] = name;
        }
        return one;
    }

    bool StandsInFolder(const std::string& name) {
        if (!names_) {
            const std::vector<std::string> names = NamesIn(descriptor_.Get(), [](const dirent& entry) {
                return entry.d_type == DT_DIR || entry.d_type == DT_UNKNOWN;
            });
            names_.emplace(names.begin(), names.end());
        }
        return names_->contains(name);
    }

    FileDescriptor descriptor_;
    FileSystem system_;
    std::unordered_map<ino_t, std::string> opened_;        ///< folders in this one, by their numbers
    std::optional<std::unordered_set<std::string>> names_; ///< of all its folders, once they were asked for
};

ErrorCode MakeFolders(const std::string& path) {
    std::error_code failure;
    std::filesystem::create_directories(path, failure);
    if (!failure) {
        return kErrorNone;
    }
    const bool fileInTheWay = failure.value() == ENOTDIR || failure.value() == EEXIST;
    return fileInTheWay ? kErrorDirectory : FileErrorOfErrno(failure.value());
}

} // namespace

ErrorCode TargetFolder::OpenTargetFolder(const std::string& path, bool create,
                                         std::unique_ptr<TargetFolder>& folder) {
    folder.reset();
    const ErrorCode error = create ? MakeFolders(path) : kErrorNone;
    if (error != kErrorNone) {
        return error;
    }
    FileDescriptor opened = OpenDescriptor(path.c_str(), O_RDONLY | O_DIRECTORY);
    if (!opened.IsOpen()) {
        return errno == ENOTDIR ? kErrorDirectory : FileErrorOfErrno(errno);
    }
    if (::faccessat(opened.Get(), ".", W_OK | X_OK, AT_EACCESS) != 0) {
        return FileErrorOfErrno(errno);
    }
    RemoveLeftParts(opened.Get());
    const FileSystem system = FileSystemOf(opened.Get());
    folder = std::make_unique<PosixTargetFolder>(std::move(opened), system);
    return kErrorNone;
}

} // namespace thntfs
