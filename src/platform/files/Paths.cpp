#include "platform/files/Paths.h"

#include <filesystem>
#include <system_error>

namespace thntfs {

namespace fs = std::filesystem;

namespace {

constexpr unsigned kMaxLinks = 40;

} // namespace

std::string AbsolutePath(const std::string& path) {
    if (path.empty()) {
        return {};
    }
    std::error_code failure;
    const fs::path absolute = fs::absolute(path, failure);
    if (failure) {
        return path;
    }
    const fs::path normal = absolute.lexically_normal();
    const bool closed = !normal.has_filename() && normal.has_relative_path();
    return closed ? normal.parent_path().string() : normal.string();
}

std::string NearestExisting(const std::string& path) {
    fs::path place = AbsolutePath(path);
    std::error_code failure;
    while (place.has_relative_path() && !fs::exists(place, failure)) {
        place = place.parent_path();
    }
    return place.string();
}

std::string BehindLinks(const std::string& path) {
    fs::path place = path;
    std::error_code failure;
    for (unsigned i = 0; i < kMaxLinks && fs::is_symlink(place, failure); ++i) {
        place = place.parent_path() / fs::read_symlink(place, failure);
    }
    return place.string();
}

std::optional<std::uint64_t> FreeBytesAt(const std::string& path) {
    std::error_code failure;
    const fs::space_info space = fs::space(NearestExisting(path), failure);
    if (failure) {
        return std::nullopt;
    }
    return space.available;
}

} // namespace thntfs
