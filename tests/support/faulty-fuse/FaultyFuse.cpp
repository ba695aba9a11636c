// faulty-fuse IMAGE FOLDER [--bad OFFSET:SIZE]... [--slow MICROSECONDS] [--log FILE]
//
// Mounts a file system at FOLDER that shows IMAGE, read only, as its one file "disk". A read that touches a
// bad range fails with EIO, as a disk does that can't give a sector; all other reads are served. Stays in the
// foreground until it is unmounted. Nothing is cached: every read of a program arrives here as it was asked.
//
// --slow makes each read take that long. --log gets a line "OFFSET SIZE ok" or "OFFSET SIZE bad" for each
// read.

#define FUSE_USE_VERSION 31

#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fuse.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr std::string_view kDiskPath = "/disk";

struct BadRange {
    std::uint64_t Offset = 0; ///< bytes
    std::uint64_t Size = 0;
};

struct Settings {
    int Image = -1;
    struct stat Status {};
    std::vector<BadRange> BadRanges;
    std::chrono::microseconds Slow{0};
    std::FILE* Log = nullptr;
};

Settings settings;

bool IsBad(std::uint64_t offset, std::uint64_t size) {
    for (const BadRange& bad : settings.BadRanges) {
        if (offset < bad.Offset + bad.Size && bad.Offset < offset + size) {
            return true;
        }
    }
    return false;
}

int GetAttributes(const char* path, struct stat* status, fuse_file_info* /*info*/) {
    std::memset(status, 0, sizeof *status);
    if (std::string_view(path) == "/") {
        status->st_mode = S_IFDIR | 0555;
        status->st_nlink = 2;
        return 0;
    }
    if (path != kDiskPath) {
        return -ENOENT;
    }
    status->st_mode = S_IFREG | 0444;
    status->st_nlink = 1;
    status->st_size = settings.Status.st_size;
    return 0;
}

int ReadFolder(const char* path, void* buffer, fuse_fill_dir_t fill, off_t /*offset*/,
               fuse_file_info* /*info*/, fuse_readdir_flags /*flags*/) {
    if (std::string_view(path) != "/") {
        return -ENOTDIR;
    }
    for (const char* name : {".", "..", "disk"}) {
        fill(buffer, name, nullptr, 0, fuse_fill_dir_flags{});
    }
    return 0;
}

int OpenFile(const char* path, fuse_file_info* info) {
    if (path != kDiskPath) {
        return -ENOENT;
    }
    if ((info->flags & O_ACCMODE) != O_RDONLY) {
        return -EROFS;
    }
    info->direct_io = 1;
    return 0;
}

int ReadFile(const char* /*path*/, char* buffer, std::size_t size, off_t offset, fuse_file_info* /*info*/) {
    std::this_thread::sleep_for(settings.Slow);
    const bool bad = IsBad(static_cast<std::uint64_t>(offset), size);
    if (settings.Log != nullptr) {
        std::fprintf(settings.Log, "%lld %zu %s\n", static_cast<long long>(offset), size, bad ? "bad" : "ok");
        std::fflush(settings.Log);
    }
    if (bad) {
        return -EIO;
    }
    const ssize_t got = ::pread(settings.Image, buffer, size, offset);
    return got < 0 ? -errno : static_cast<int>(got);
}

bool ReadNumber(std::string_view text, std::uint64_t& number) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc{} && result.ptr == text.data() + text.size();
}

bool TakeBadRange(std::string_view text) {
    const std::size_t colon = text.find(':');
    BadRange bad;
    if (colon == std::string_view::npos || !ReadNumber(text.substr(0, colon), bad.Offset) ||
        !ReadNumber(text.substr(colon + 1), bad.Size)) {
        return false;
    }
    settings.BadRanges.push_back(bad);
    return true;
}

bool TakeOption(std::string_view name, const char* value) {
    if (name == "--bad") {
        return TakeBadRange(value);
    }
    if (name == "--slow") {
        std::uint64_t micros = 0;
        const bool read = ReadNumber(value, micros);
        settings.Slow = std::chrono::microseconds(micros);
        return read;
    }
    if (name == "--log") {
        settings.Log = std::fopen(value, "w");
        return settings.Log != nullptr;
    }
    return false;
}

bool TakeWords(int argc, char** argv) {
    if (argc < 3 || argc % 2 == 0) {
        return false;
    }
    for (int i = 3; i + 1 < argc; i += 2) {
        if (!TakeOption(argv[i], argv[i + 1])) {
            return false;
        }
    }
    settings.Image = ::open(argv[1], O_RDONLY | O_CLOEXEC);
    return settings.Image >= 0 && ::fstat(settings.Image, &settings.Status) == 0;
}

} // namespace

int main(int argc, char** argv) {
    if (!TakeWords(argc, argv)) {
        std::fputs("faulty-fuse IMAGE FOLDER [--bad OFFSET:SIZE]... [--slow MICROSECONDS] [--log FILE]\n",
                   stderr);
        return 2;
    }
    fuse_operations operations{};
    operations.getattr = GetAttributes;
    operations.readdir = ReadFolder;
    operations.open = OpenFile;
    operations.read = ReadFile;
    std::vector<std::string> words = {argv[0], "-f", "-s", "-o", "ro", argv[2]};
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    return fuse_main(static_cast<int>(pointers.size()), pointers.data(), &operations, nullptr);
}
