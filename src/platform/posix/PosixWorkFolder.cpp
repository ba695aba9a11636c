#include "platform/Paths.h"
#include "platform/WorkFolder.h"
#include "platform/posix/ErrnoMap.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace thntfs {

ErrorCode WorkFolder::Create() {
    const char* chosen = std::getenv("TMPDIR");
    const std::string parent = chosen != nullptr && *chosen != '\0' ? AbsolutePath(chosen) : "/tmp";
    std::string path = parent + "/th-ntfs-XXXXXX";
    if (::mkdtemp(path.data()) == nullptr) {
        return FileErrorOfErrno(errno);
    }
    path_ = path;
    return kErrorNone;
}

WorkFolder::~WorkFolder() {
    if (!path_.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
}

} // namespace thntfs
