#include "scaninfo/ReplacementFile.h"

#include "platform/Paths.h"

#include <filesystem>
#include <system_error>

namespace thntfs {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kKeptNameBytes = 200; // leaves room for what is appended
constexpr unsigned kMaxTries = 100;

ErrorCode CodeOf(const std::error_code& failure) {
    if (failure == std::errc::permission_denied || failure == std::errc::operation_not_permitted) {
        return kErrorAccessDenied;
    }
    if (failure == std::errc::is_a_directory) {
        return kErrorDirectory;
    }
    if (failure == std::errc::no_space_on_device) {
        return kErrorDiskFull;
    }
    if (failure == std::errc::read_only_file_system) {
        return kErrorWriteProtect;
    }
    return failure == std::errc::no_such_file_or_directory ? kErrorPathNotFound : kErrorGeneralFailure;
}

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

} // namespace

ReplacementFile::~ReplacementFile() {
    file_.reset();
    if (!path_.empty()) {
        Files().Delete(path_);
    }
}

ErrorCode ReplacementFile::Create(const std::string& target) {
    target_ = BehindLinks(target); // a link keeps its place: the file that it leads to is replaced
    const ErrorCode code = TryTarget(target_);
    return code != kErrorNone ? code : CreateBeside();
}

ErrorCode ReplacementFile::CreateBeside() {
    const fs::path target(target_);
    const std::string stem =
        (target.parent_path() / target.filename().string().substr(0, kKeptNameBytes)).string() + ".part";
    ErrorCode code = kErrorFileExists;
    for (unsigned i = 0; code == kErrorFileExists && i < kMaxTries; ++i) {
        const std::string path = i == 0 ? stem : stem + std::to_string(i);
        code = Files().Open(path, FileMode::CreateNew, file_);
        path_ = code == kErrorNone ? path : std::string();
    }
    return code;
}

ErrorCode ReplacementFile::Commit() {
    const ErrorCode code = file_->Sync();
    if (code != kErrorNone) {
        return code;
    }
    file_.reset();
    KeepPermissions();
    std::error_code failure;
    fs::rename(path_, target_, failure);
    if (failure) {
        return CodeOf(failure);
    }
    path_.clear();
    return kErrorNone;
}

// What only its owner could read must not become readable to all.
void ReplacementFile::KeepPermissions() const {
    std::error_code failure;
    const fs::file_status older = fs::status(target_, failure);
    if (!failure && fs::is_regular_file(older)) {
        fs::permissions(path_, older.permissions(), failure);
    }
}

} // namespace thntfs
