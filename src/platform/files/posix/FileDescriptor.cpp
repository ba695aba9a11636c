#include "platform/files/posix/FileDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace thntfs {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
        Close();
        number_ = other.Release();
    }
    return *this;
}

int FileDescriptor::Release() { return std::exchange(number_, -1); }

void FileDescriptor::Close() {
    if (number_ >= 0) {
        ::close(Release());
    }
}

FileDescriptor DuplicateOf(int number) { return FileDescriptor(::fcntl(number, F_DUPFD_CLOEXEC, 0)); }

FileDescriptor OpenDescriptor(const char* path, int flags, unsigned mode) {
    return OpenDescriptorAt(AT_FDCWD, path, flags, mode);
}

FileDescriptor OpenDescriptorAt(int folder, const char* name, int flags, unsigned mode) {
    int number = -1;
    do {
        number = ::openat(folder, name, flags | O_CLOEXEC, static_cast<mode_t>(mode));
    } while (number < 0 && errno == EINTR);
    return FileDescriptor(number);
}

} // namespace thntfs
