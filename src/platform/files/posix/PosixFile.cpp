#include "platform/files/posix/PosixFile.h"

#include "platform/files/File.h"
#include "platform/files/posix/SetDates.h"
#include "platform/system/posix/ErrnoMap.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <limits>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace thntfs {

namespace {

constexpr mode_t kForAll = 0666;
constexpr mode_t kOwnMode = 0600;
constexpr std::uint64_t kMaxOffset = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

/// Calls `transfer(done)` until `size` bytes are through or it gives 0, which ends a read at the end of the
/// file.
template <typename Transfer>
ErrorCode TransferAll(int descriptor, short readiness, std::size_t size, std::size_t& done,
                      Transfer transfer) {
    done = 0;
    while (done < size) {
        const ssize_t moved = transfer(done);
        if (moved > 0) {
            done += static_cast<std::size_t>(moved);
        } else if (moved == 0) {
            break;
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            // Standard output may have been made non-blocking by who shares it.
            pollfd wait{descriptor, readiness, 0};
            ::poll(&wait, 1, -1);
        } else if (errno != EINTR) {
            return FileErrorOfErrno(errno);
        }
    }
    return kErrorNone;
}

ErrorCode WriteAll(int descriptor, ConstBytes bytes) {
    std::size_t done = 0;
    const ErrorCode error = TransferAll(descriptor, POLLOUT, bytes.size(), done, [&](std::size_t at) {
        return ::write(descriptor, bytes.data() + at, bytes.size() - at);
    });
    return error == kErrorNone && done < bytes.size() ? kErrorIoDevice : error;
}

class PosixFile final : public File {
public:
    PosixFile(FileDescriptor descriptor, AtClose atClose)
        : descriptor_(std::move(descriptor))
        , atClose_(atClose) {}

    ErrorCode Write(ConstBytes bytes) override { return WriteAll(descriptor_.Get(), bytes); }

    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) override {
        if (offset > kMaxOffset || bytes.size() > kMaxOffset - offset) {
            return kErrorFileTooLarge;
        }
        std::size_t done = 0;
        const ErrorCode error =
            TransferAll(descriptor_.Get(), POLLOUT, bytes.size(), done, [&](std::size_t at) {
                return ::pwrite(descriptor_.Get(), bytes.data() + at, bytes.size() - at,
                                static_cast<off_t>(offset + at));
            });
        return error == kErrorNone && done < bytes.size() ? kErrorIoDevice : error;
    }

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got) override {
        got = 0;
        if (offset > kMaxOffset || buffer.size() > kMaxOffset - offset) {
            return kErrorInvalidParameter;
        }
        return TransferAll(descriptor_.Get(), POLLIN, buffer.size(), got, [&](std::size_t at) {
            return ::pread(descriptor_.Get(), buffer.data() + at, buffer.size() - at,
                           static_cast<off_t>(offset + at));
        });
    }

    ErrorCode Size(std::uint64_t& bytes) override {
        struct stat status {};
        if (::fstat(descriptor_.Get(), &status) != 0) {
            return FileErrorOfErrno(errno);
        }
        bytes = static_cast<std::uint64_t>(status.st_size);
        return kErrorNone;
    }

    ErrorCode SetSize(std::uint64_t bytes) override {
        if (bytes > kMaxOffset) {
            return kErrorFileTooLarge;
        }
        return ::ftruncate(descriptor_.Get(), static_cast<off_t>(bytes)) == 0 ? kErrorNone
                                                                              : FileErrorOfErrno(errno);
    }

    [[nodiscard]] bool StandsAt(const std::string& path) const override {
        struct stat own {};
        struct stat there {};
        if (::fstat(descriptor_.Get(), &own) != 0) {
            return true;
        }
        if (::stat(path.c_str(), &there) != 0) {
            return errno != ENOENT && errno != ENOTDIR;
        }
        return own.st_dev == there.st_dev && own.st_ino == there.st_ino;
    }

    void SetDates(const FileDates& dates) override { SetDatesOf(descriptor_.Get(), dates); }

    ErrorCode Sync() override {
        return ::fdatasync(descriptor_.Get()) == 0 ? kErrorNone : FileErrorOfErrno(errno);
    }

    ErrorCode Close() override {
        if (const ErrorCode error = atClose_ == AtClose::Sync ? Sync() : kErrorNone; error != kErrorNone) {
            return error;
        }
        const int number = descriptor_.Release();
        // Linux has closed the file whatever it answers.
        return ::close(number) == 0 || errno == EINTR ? kErrorNone : FileErrorOfErrno(errno);
    }

    void Reserve(std::uint64_t offset, std::uint64_t bytes) override {
        if (offset <= kMaxOffset && bytes <= kMaxOffset - offset && IsOrdinary()) {
            (void)::fallocate(descriptor_.Get(), FALLOC_FL_KEEP_SIZE, static_cast<off_t>(offset),
                              static_cast<off_t>(bytes));
        }
    }

    void ReleaseReserve() override {
        std::uint64_t size = 0;
        if (IsOrdinary() && Size(size) == kErrorNone) {
            (void)!::ftruncate(descriptor_.Get(), static_cast<off_t>(size));
        }
    }

    void StartSync(std::uint64_t offset, std::uint64_t bytes) override {
        (void)::sync_file_range(descriptor_.Get(), static_cast<off64_t>(offset), static_cast<off64_t>(bytes),
                                SYNC_FILE_RANGE_WRITE);
    }

private:
    /// On a device the room is there, and setting it aside anew would clear it.
    [[nodiscard]] bool IsOrdinary() const {
        struct stat status {};
        return ::fstat(descriptor_.Get(), &status) == 0 && S_ISREG(status.st_mode);
    }

    FileDescriptor descriptor_;
    AtClose atClose_;
};

/// Writes on from where standard output stands, which may be a pipe, so nothing else works on it.
class StandardOutput final : public File {
public:
    ErrorCode Write(ConstBytes bytes) override { return WriteAll(STDOUT_FILENO, bytes); }
    ErrorCode WriteAt(std::uint64_t, ConstBytes) override { return kErrorInvalidParameter; }
    ErrorCode ReadAt(std::uint64_t, Bytes, std::size_t& got) override {
        got = 0;
        return kErrorInvalidParameter;
    }
    ErrorCode Size(std::uint64_t&) override { return kErrorInvalidParameter; }

    ErrorCode Sync() override {
        // Pipes and terminals have no device to wait for and answer EINVAL or EROFS.
        const bool done = ::fdatasync(STDOUT_FILENO) == 0 || errno == EINVAL || errno == EROFS;
        return done ? kErrorNone : FileErrorOfErrno(errno);
    }
};

int FlagsOfMode(FileMode mode) {
    switch (mode) {
    case FileMode::CreateNew:
        return O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;
    case FileMode::CreateAlways:
        return O_RDWR | O_CREAT | O_TRUNC;
    case FileMode::OpenReadWrite:
        return O_RDWR;
    case FileMode::CreateOwn:
        return O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW;
    case FileMode::OpenOwnReadWrite:
        return O_RDWR | O_NOFOLLOW;
    case FileMode::OpenOwn:
        return O_RDONLY | O_NOFOLLOW;
    case FileMode::OpenRead:
        break;
    }
    return O_RDONLY;
}

class PosixFileStore final : public FileStore {
public:
    ErrorCode Open(const std::string& path, FileMode mode, std::unique_ptr<File>& file) override {
        file.reset();
        const bool own = mode == FileMode::CreateOwn;
        if (own) {
            (void)Delete(path);
        }
        FileDescriptor descriptor =
            OpenDescriptor(path.c_str(), FlagsOfMode(mode) | O_NOCTTY, own ? kOwnMode : kForAll);
        struct stat status {};
        if (!descriptor.IsOpen() || ::fstat(descriptor.Get(), &status) != 0) {
            return FileErrorOfErrno(errno);
        }
        if (S_ISDIR(status.st_mode)) {
            return kErrorDirectory;
        }
        file = MakePosixFile(std::move(descriptor));
        return kErrorNone;
    }

    ErrorCode Delete(const std::string& path) override {
        return ::unlink(path.c_str()) == 0 ? kErrorNone : FileErrorOfErrno(errno);
    }
};

PosixFileStore systemStore;
FileStore* storeInUse = &systemStore;

} // namespace

std::unique_ptr<File> MakePosixFile(FileDescriptor descriptor, AtClose atClose) {
    return std::make_unique<PosixFile>(std::move(descriptor), atClose);
}

ErrorCode File::SetSize(std::uint64_t /*bytes*/) { return kErrorInvalidParameter; }
bool File::StandsAt(const std::string& /*path*/) const { return true; }
void File::SetDates(const FileDates& /*dates*/) {}
void File::Expect(std::uint64_t /*bytes*/, const FileDates& /*dates*/) {}
ErrorCode File::Close() { return kErrorNone; }
void File::Reserve(std::uint64_t /*offset*/, std::uint64_t /*bytes*/) {}
void File::ReleaseReserve() {}
void File::StartSync(std::uint64_t /*offset*/, std::uint64_t /*bytes*/) {}

ErrorCode FileStore::Admit(std::unique_ptr<File>& /*file*/) { return kErrorNone; }

FileStore& Files() { return *storeInUse; }

void SetFileStore(FileStore* store) { storeInUse = store != nullptr ? store : &systemStore; }

std::unique_ptr<File> OpenStandardOutput() { return std::make_unique<StandardOutput>(); }

} // namespace thntfs
