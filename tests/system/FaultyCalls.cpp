// faulty-calls.so, preloaded into a program, counts its calls on certain files and lets one of them go wrong.
//
//   FAULT_UNDER   paths with ':' between: calls on these, and on what lies below them, count
//   FAULT_CALLS   "read", "write" or "all": of these kinds
//   FAULT_AT      the call that goes wrong, counted from 1; without it, none
//   FAULT_HOW     once    it fails: EIO for reads and syncs, ENOSPC for what takes room
//                 sector  one sector of what it asks for fails with EIO, then and later
//                 range   all that it asks for does
//                 gone    it and all reads after it fail with ENODEV
//                 short   it moves about half
//                 full    it writes half; all that takes room fails with ENOSPC from then on
//                 kill    the program is killed in its stead
//                 torn    the same, but half is written before
//   FAULT_BAD     "OFFSET SIZE OFFSET SIZE ...": reads that touch one of these ranges of bytes fail with EIO
//   FAULT_SLOW    microseconds that each read takes longer
//   FAULT_LIST    file that gets a line for each call that counts, with tabs between: name, path, and of a
//                 read its offset and size

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr off_t kSector = 512;

std::string Word(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

using Range = std::pair<off_t, off_t>; ///< first byte and end

std::vector<Range> BadRanges() {
    std::vector<Range> ranges;
    std::istringstream words(Word("FAULT_BAD"));
    for (Range range; words >> range.first >> range.second;) {
        ranges.emplace_back(range.first, range.first + range.second);
    }
    return ranges;
}

struct State {
    std::string Under = Word("FAULT_UNDER");
    std::string Calls = Word("FAULT_CALLS");
    std::string How = Word("FAULT_HOW");
    long At = std::atol(Word("FAULT_AT").c_str());
    std::FILE* List = Word("FAULT_LIST").empty() ? nullptr : std::fopen(Word("FAULT_LIST").c_str(), "we");
    long Number = 0; ///< of the last call that counted
    std::vector<Range> Bad = BadRanges();
    useconds_t Slow = static_cast<useconds_t>(std::atoi(Word("FAULT_SLOW").c_str()));
};

State& Now() {
    static State state;
    return state;
}

std::string LinkTarget(const std::string& link) {
    char path[4096];
    const long length = syscall(SYS_readlink, link.c_str(), path, sizeof path);
    return {path, static_cast<std::size_t>(std::max(length, 0L))};
}

std::string PathOf(int descriptor) { return LinkTarget("/proc/self/fd/" + std::to_string(descriptor)); }

std::string PathOf(int folder, const char* name) {
    if (name[0] == '/') {
        return name;
    }
    return (folder == AT_FDCWD ? LinkTarget("/proc/self/cwd") : PathOf(folder)) + "/" + name;
}

bool Covers(std::string_view path) {
    std::string_view left = Now().Under;
    while (!left.empty()) {
        const std::string_view place = left.substr(0, left.find(':'));
        left.remove_prefix(std::min(left.size(), place.size() + 1));
        if (path.substr(0, place.size()) == place &&
            (path.size() == place.size() || path[place.size()] == '/')) {
            return true;
        }
    }
    return false;
}

/// Whether the call counts; it then has its number.
bool Counts(std::string_view kind, const char* name, const std::string& path, const std::string& more = "") {
    State& now = Now();
    const int error = errno;
    const bool counts = (now.Calls == "all" || now.Calls == kind) && Covers(path);
    if (counts) {
        ++now.Number;
    }
    if (counts && now.List != nullptr) {
        std::fprintf(now.List, "%s\t%s%s\n", name, path.c_str(), more.c_str());
        std::fflush(now.List);
    }
    errno = error;
    return counts;
}

bool IsHit() { return Now().Number == Now().At; }

bool Is(std::string_view how) { return Now().How == how; }

void KillIfTold() {
    if (IsHit() && (Is("kill") || Is("torn"))) {
        std::raise(SIGKILL);
    }
}

/// Zero, or the errno value with which a read that counts fails.
int ReadError(off_t offset, off_t size) {
    State& now = Now();
    if (IsHit() && (Is("range") || Is("sector"))) {
        const off_t sectors = std::max<off_t>(size / kSector, 1);
        const off_t first = Is("range") ? offset : offset + now.Number * 7 % sectors * kSector;
        now.Bad.emplace_back(first, Is("range") ? offset + size : first + kSector);
    }
    if (Is("gone") && now.At != 0 && now.Number >= now.At) {
        return ENODEV;
    }
    const bool bad = std::any_of(now.Bad.begin(), now.Bad.end(), [=](const Range& range) {
        return offset < range.second && range.first < offset + size;
    });
    return bad || (IsHit() && Is("once")) ? EIO : 0;
}

/// The same for a call that writes. `takesRoom`: a full disk refuses it.
int WriteError(bool takesRoom, int error) {
    KillIfTold();
    const bool full = Is("full") && takesRoom && Now().At != 0 && Now().Number >= Now().At;
    return full || (IsHit() && Is("once")) ? error : 0;
}

long Fail(int error) {
    errno = error;
    return -1;
}

/// For calls on a path or descriptor that do all or nothing.
template <typename... Words>
int Whole(const char* name, const std::string& path, bool takesRoom, int error, long number, Words... words) {
    if (Counts("write", name, path)) {
        if (const int failure = WriteError(takesRoom, error); failure != 0) {
            return static_cast<int>(Fail(failure));
        }
    }
    return static_cast<int>(syscall(number, words...));
}

template <typename... Offset>
ssize_t Write(const char* name, long number, int descriptor, const void* bytes, std::size_t size,
              Offset... offset) {
    if (Counts("write", name, PathOf(descriptor))) {
        if (IsHit() && size > 1 && (Is("torn") || Is("full") || Is("short"))) {
            const long moved = syscall(number, descriptor, bytes, size / 2, offset...);
            KillIfTold();
            return moved;
        }
        if (const int failure = WriteError(true, ENOSPC); failure != 0) {
            return Fail(failure);
        }
    }
    return syscall(number, descriptor, bytes, size, offset...);
}

} // namespace

extern "C" {

ssize_t pread(int descriptor, void* bytes, std::size_t size, off_t offset) {
    const std::string place = "\t" + std::to_string(offset) + "\t" + std::to_string(size);
    if (Counts("read", "pread", PathOf(descriptor), place)) {
        KillIfTold();
        usleep(Now().Slow);
        if (const int failure = ReadError(offset, static_cast<off_t>(size)); failure != 0) {
            return Fail(failure);
        }
        if (IsHit() && Is("short") && size > kSector) {
            size = size / 2 / kSector * kSector;
        }
    }
    return syscall(SYS_pread64, descriptor, bytes, size, offset);
}

// Other programs' road; it isn't counted.
ssize_t read(int descriptor, void* bytes, std::size_t size) {
    if (!Now().Bad.empty() && Covers(PathOf(descriptor)) &&
        ReadError(syscall(SYS_lseek, descriptor, 0, SEEK_CUR), static_cast<off_t>(size)) != 0) {
        return Fail(EIO);
    }
    return syscall(SYS_read, descriptor, bytes, size);
}

ssize_t write(int descriptor, const void* bytes, std::size_t size) {
    return Write("write", SYS_write, descriptor, bytes, size);
}

ssize_t pwrite(int descriptor, const void* bytes, std::size_t size, off_t offset) {
    return Write("pwrite", SYS_pwrite64, descriptor, bytes, size, offset);
}

int openat(int folder, const char* name, int flags, ...) {
    va_list words;
    va_start(words, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(words, mode_t) : 0;
    va_end(words);
    const std::string path = (flags & O_CREAT) != 0 ? PathOf(folder, name) : "";
    return Whole("create", path, true, ENOSPC, SYS_openat, folder, name, flags, mode);
}

int mkdirat(int folder, const char* name, mode_t mode) {
    return Whole("mkdir", PathOf(folder, name), true, ENOSPC, SYS_mkdirat, folder, name, mode);
}

int mkdir(const char* name, mode_t mode) { return mkdirat(AT_FDCWD, name, mode); }

int fallocate(int descriptor, int mode, off_t offset, off_t size) {
    return Whole("fallocate", PathOf(descriptor), true, ENOSPC, SYS_fallocate, descriptor, mode, offset,
                 size);
}

int ftruncate(int descriptor, off_t size) {
    return Whole("ftruncate", PathOf(descriptor), false, ENOSPC, SYS_ftruncate, descriptor, size);
}

int fsync(int descriptor) { return Whole("fsync", PathOf(descriptor), false, EIO, SYS_fsync, descriptor); }

int fdatasync(int descriptor) {
    return Whole("fsync", PathOf(descriptor), false, EIO, SYS_fdatasync, descriptor);
}

int syncfs(int descriptor) { return Whole("syncfs", PathOf(descriptor), false, EIO, SYS_syncfs, descriptor); }

int renameat2(int from, const char* name, int to, const char* newName, unsigned flags) {
    return Whole("rename", PathOf(to, newName), false, ENOSPC, SYS_renameat2, from, name, to, newName, flags);
}

int renameat(int from, const char* name, int to, const char* newName) {
    return renameat2(from, name, to, newName, 0);
}

int rename(const char* name, const char* newName) { return renameat(AT_FDCWD, name, AT_FDCWD, newName); }

int linkat(int from, const char* name, int to, const char* newName, int flags) {
    return Whole("link", PathOf(to, newName), true, ENOSPC, SYS_linkat, from, name, to, newName, flags);
}

int unlinkat(int folder, const char* name, int flags) {
    return Whole("unlink", PathOf(folder, name), false, 0, SYS_unlinkat, folder, name, flags);
}

int unlink(const char* name) { return unlinkat(AT_FDCWD, name, 0); }

/// A failed close has closed all the same.
int close(int descriptor) {
    const int error = errno;
    const bool writes = (fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_RDONLY;
    errno = error;
    int failure = 0;
    if (writes && Counts("write", "close", PathOf(descriptor))) {
        failure = WriteError(false, EIO);
    }
    const long result = syscall(SYS_close, descriptor);
    return static_cast<int>(failure != 0 ? Fail(failure) : result);
}
}
