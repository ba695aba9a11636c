#include "platform/File.h"
#include "platform/ReplaceFile.h"
#include "platform/posix/ErrnoMap.h"
#include "platform/posix/FileDescriptor.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace thntfs {

namespace {

ErrorCode WriteNew(const std::string& path, ConstBytes content) {
    (void)Files().Delete(path);
    std::unique_ptr<File> file;
    ErrorCode error = Files().Open(path, FileMode::CreateNew, file);
    if (error == kErrorNone) {
        error = file->Write(content);
    }
    if (error == kErrorNone) {
        error = file->Sync();
    }
    return error;
}

/// A new name is on the disk only once its folder is. File systems that can't be asked for that are left
/// alone.
void SyncFolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const FileDescriptor descriptor = OpenDescriptor(folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (descriptor.IsOpen()) {
        (void)::fsync(descriptor.Get());
    }
}

} // namespace

ErrorCode ReplaceFile(const std::string& path, ConstBytes content) {
    const std::string fresh = path + ".new";
    ErrorCode error = WriteNew(fresh, content);
    if (error == kErrorNone && std::rename(fresh.c_str(), path.c_str()) != 0) {
        error = FileErrorOfErrno(errno);
    }
    if (error != kErrorNone) {
        (void)Files().Delete(fresh);
        return error;
    }
    SyncFolderOf(path);
    return kErrorNone;
}

} // namespace thntfs
