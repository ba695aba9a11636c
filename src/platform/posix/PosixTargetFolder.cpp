#include "platform/TargetFolder.h"
#include "platform/posix/ErrnoMap.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/PosixFile.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace thntfs {

namespace {

/// A file system that dislikes a name (vfat and its colons) says EINVAL.
ErrorCode NameError(int number) { return number == EINVAL ? kErrorInvalidName : FileErrorOfErrno(number); }

class PosixTargetFolder final : public TargetFolder {
public:
    explicit PosixTargetFolder(FileDescriptor descriptor)
        : descriptor_(std::move(descriptor)) {}

    ErrorCode MakeSubfolder(const std::string& name, std::unique_ptr<TargetFolder>& folder) override {
        // `folder` may own this very object, so it changes last.
        FileDescriptor opened;
        const ErrorCode error = OpenSubfolder(name, opened);
        folder = error == kErrorNone ? std::make_unique<PosixTargetFolder>(std::move(opened)) : nullptr;
        return error;
    }

    ErrorCode CreateFile(const std::string& name, std::unique_ptr<File>& file) override {
        file.reset();
        if (!IsPlainName(name)) {
            return kErrorInvalidName;
        }
        FileDescriptor created = OpenDescriptorAt(descriptor_.Get(), name.c_str(),
                                                  O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_NOCTTY, 0666);
        if (!created.IsOpen()) {
            return NameError(errno);
        }
        file = MakePosixFile(std::move(created));
        const ErrorCode error = Files().Admit(file);
        if (error != kErrorNone) {
            file.reset();
            ::unlinkat(descriptor_.Get(), name.c_str(), 0);
        }
        return error;
    }

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

private:
    ErrorCode OpenSubfolder(const std::string& name, FileDescriptor& opened) {
        if (!IsPlainName(name)) {
            return kErrorInvalidName;
        }
        if (::mkdirat(descriptor_.Get(), name.c_str(), 0777) != 0 && errno != EEXIST) {
            return NameError(errno);
        }
        opened = OpenDescriptorAt(descriptor_.Get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (opened.IsOpen()) {
            return kErrorNone;
        }
        return errno == ENOTDIR || errno == ELOOP ? kErrorFileExists : NameError(errno);
    }

    FileDescriptor descriptor_;
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
    folder = std::make_unique<PosixTargetFolder>(std::move(opened));
    return kErrorNone;
}

} // namespace thntfs
