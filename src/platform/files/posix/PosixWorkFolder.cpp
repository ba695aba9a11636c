#include "platform/files/Paths.h"
#include "platform/files/WorkFolder.h"
#include "platform/files/posix/FileDescriptor.h"
#include "platform/files/posix/LifeLock.h"
#include "platform/system/posix/ErrnoMap.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace thntfs {

namespace {

namespace fs = std::filesystem;

constexpr mode_t kFolderMode = 0700;
constexpr mode_t kRightsOfOthers = 0077;
constexpr std::string_view kPattern = "XXXXXX";
constexpr unsigned kFolderTries = 100;

/// Empty where the environment names none.
std::string FolderOfEnvironment(const char* name) {
    const char* chosen = std::getenv(name);
    return chosen != nullptr && *chosen != '\0' ? AbsolutePath(chosen) : std::string();
}

/// Anybody may take away what lies in such a folder, and put his own in its place.
bool IsOpenToAll(const std::string& place) {
    struct stat status {};
    return ::stat(place.c_str(), &status) == 0 && (status.st_mode & S_IWOTH) != 0 &&
           (status.st_mode & S_ISVTX) == 0;
}

std::string UserFolderAt(const std::string& place) {
    return place + "/th-ntfs-" + std::to_string(::geteuid());
}

/// Makes the user's folder where it isn't there. Anybody may have put a folder or a link of its name into
/// /tmp before.
ErrorCode MakeUserFolder(const std::string& path) {
    if (::mkdir(path.c_str(), kFolderMode) != 0 && errno != EEXIST) {
        return FileErrorOfErrno(errno);
    }
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        return FileErrorOfErrno(errno);
    }
    const bool own =
        S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() && (status.st_mode & kRightsOfOthers) == 0;
    return own ? kErrorNone : kErrorFileExists;
}

FileDescriptor OpenFolder(const std::string& path) {
    return OpenDescriptor(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
}

void RemoveFolderIfLeft(const std::string& path) {
    const FileDescriptor folder = OpenFolder(path);
    if (IsLeftBehind(folder, path)) {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
}

void RemoveLeftFolders(const std::string& parent, const std::string& prefix) {
    std::error_code failure;
    for (fs::directory_iterator entry(parent, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        const std::string path = entry->path().string();
        const std::string name = entry->path().filename().string();
        if (name.starts_with(prefix) && name.size() == prefix.size() + kPattern.size()) {
            RemoveFolderIfLeft(path);
        }
    }
}

} // namespace

/// Keeps a folder of this run's own, and takes it away.
class WorkFolder::Life {
public:
    Life(std::string path, FileDescriptor lock)
        : path_(std::move(path))
        , lock_(std::move(lock)) {}
    ~Life() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
        // The user's folder above goes as well if that was all that is in it.
        const std::string parent = fs::path(path_).parent_path().string();
        if (parent == UserFolderAt(fs::path(parent).parent_path().string())) {
            ::rmdir(parent.c_str());
        }
    }
    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

private:
    std::string path_;
    FileDescriptor lock_;
};

WorkFolder::WorkFolder() = default;
WorkFolder::~WorkFolder() = default;

ErrorCode WorkFolder::Create(const PlaceRule& mayLieAt) { return TryPlaces(mayLieAt, false); }
ErrorCode WorkFolder::CreateLasting(const PlaceRule& mayLieAt) { return TryPlaces(mayLieAt, true); }

ErrorCode WorkFolder::TryPlaces(const PlaceRule& mayLieAt, bool lasting) {
    const std::string chosen = FolderOfEnvironment("TMPDIR");
    ErrorCode first = kErrorNone;
    for (const std::string& place : {chosen, std::string("/tmp"), std::string("/var/tmp"),
                                     FolderOfEnvironment("XDG_RUNTIME_DIR"), std::string("/dev/shm")}) {
        if (place.empty()) {
            continue;
        }
        ErrorCode code = kErrorAccessDenied;
        if (IsOpenToAll(place) || (mayLieAt && !mayLieAt(UserFolderAt(place)))) {
            passed_ = passed_.empty() ? place : passed_;
        } else if (code = TryPlace(place, lasting); code == kErrorNone || place == chosen) {
            return code;
        }
        first = first == kErrorNone ? code : first;
    }
    return first;
}

ErrorCode WorkFolder::TryPlace(const std::string& place, bool lasting) {
    const std::string user = UserFolderAt(place);
    ErrorCode code = kErrorPathNotFound;
    for (unsigned i = 0; code == kErrorPathNotFound && i < kFolderTries; ++i) {
        // Another run may take the user's folder away when it ends.
        code = MakeUserFolder(user);
        if (code == kErrorNone && lasting) {
            life_.reset();
            path_ = user;
        } else if (code == kErrorNone) {
            code = MakeRunFolder(user, "run-");
        }
    }
    return code == kErrorFileExists ? MakeRunFolder(place, fs::path(user).filename().string() + "-") : code;
}

ErrorCode WorkFolder::MakeRunFolder(const std::string& parent, const std::string& prefix) {
    RemoveLeftFolders(parent, prefix);
    for (unsigned i = 0; i < kFolderTries; ++i) {
        std::string path = parent;
        path.append("/").append(prefix).append(kPattern);
        if (::mkdtemp(path.data()) == nullptr) {
            return errno == ENOENT ? kErrorPathNotFound : FileErrorOfErrno(errno);
        }
        FileDescriptor lock = OpenFolder(path);
        if (lock.IsOpen() && LockForLife(lock, path)) {
            life_ = std::make_unique<Life>(path, std::move(lock));
            path_ = path;
            return kErrorNone;
        }
    }
    return kErrorFileExists;
}

} // namespace thntfs
