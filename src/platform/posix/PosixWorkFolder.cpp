#include "platform/Paths.h"
#include "platform/WorkFolder.h"
#include "platform/posix/ErrnoMap.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace thntfs {

namespace {

constexpr mode_t kOwnerOnly = 0700;
constexpr mode_t kRightsOfOthers = 0077;

// Empty where the environment names none.
std::string ChosenTemporaryFolder() {
    const char* chosen = std::getenv("TMPDIR");
    return chosen != nullptr && *chosen != '\0' ? AbsolutePath(chosen) : std::string();
}

} // namespace

ErrorCode WorkFolder::Create() {
    const std::string chosen = ChosenTemporaryFolder();
    std::string path = (chosen.empty() ? "/tmp" : chosen) + "/th-ntfs-XXXXXX";
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

// Anybody may put a folder or a link of this name into /tmp before we do.
ErrorCode LastingWorkFolder(std::string& path) {
    path = ChosenTemporaryFolder();
    if (!path.empty()) {
        return kErrorNone;
    }
    path = "/tmp/th-ntfs-" + std::to_string(::getuid());
    if (::mkdir(path.c_str(), kOwnerOnly) != 0 && errno != EEXIST) {
        return FileErrorOfErrno(errno);
    }
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        return FileErrorOfErrno(errno);
    }
    const bool own =
        S_ISDIR(status.st_mode) && status.st_uid == ::getuid() && (status.st_mode & kRightsOfOthers) == 0;
    return own ? kErrorNone : kErrorAccessDenied;
}

} // namespace thntfs
