#include "platform/files/posix/PartFiles.h"

#include "platform/files/PartName.h"
#include "platform/files/posix/FolderNames.h"
#include "platform/files/posix/LifeLock.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace thntfs {

void RemoveLeftParts(int folder) {
    const auto isPart = [](const dirent& entry) { return IsPartName(entry.d_name, ""); };
    for (const std::string& name : NamesIn(folder, isPart)) {
        const FileDescriptor part =
            OpenDescriptorAt(folder, name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
        struct stat status {};
        if (::fstat(part.Get(), &status) == 0 && S_ISREG(status.st_mode) &&
            IsLeftBehind(part, name, folder)) {
            (void)::unlinkat(folder, name.c_str(), 0);
        }
    }
}

} // namespace thntfs
