#include "platform/media/posix/MountTable.h"

#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace thntfs {

namespace {

bool IsOctal(char c) { return c >= '0' && c <= '7'; }

/// The kernel writes blanks and backslashes of a path as \ooo.
std::string Unescaped(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '\\' && i + 3 < text.size() && IsOctal(text[i + 1]) &&
                            IsOctal(text[i + 2]) && IsOctal(text[i + 3]);
        if (escape) {
            out +=
                static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0'));
            i += 3;
        } else {
            out += text[i];
        }
    }
    return out;
}

} // namespace

std::optional<Mount> ParseMount(std::string_view line) {
    std::istringstream in{std::string(line)};
    Mount mount;
    std::string word;
    unsigned majorNumber = 0;
    unsigned minorNumber = 0;
    char colon = 0;
    if (!(in >> mount.Id >> word >> majorNumber >> colon >> minorNumber) || colon != ':') {
        return std::nullopt;
    }
    // A varying number of words comes before the lone "-", then the type and the source.
    while (in >> word && word != "-") {
    }
    if (!(in >> word >> word)) {
        return std::nullopt;
    }
    mount.Device = makedev(majorNumber, minorNumber);
    mount.Source = Unescaped(word);
    return mount;
}

std::vector<Mount> MountTable() {
    std::vector<Mount> mounts;
    std::ifstream in("/proc/self/mountinfo");
    std::string line;
    while (std::getline(in, line)) {
        if (auto mount = ParseMount(line)) {
            mounts.push_back(std::move(*mount));
        }
    }
    return mounts;
}

std::string MountSourceOf(const std::string& path) {
    struct statx status {};
    if (::statx(AT_FDCWD, path.c_str(), 0, STATX_MNT_ID, &status) != 0 ||
        (status.stx_mask & STATX_MNT_ID) == 0) {
        return {};
    }
    for (const Mount& mount : MountTable()) {
        if (mount.Id == status.stx_mnt_id) {
            return mount.Source;
        }
    }
    return {};
}

std::vector<std::string> SwapPaths() {
    std::vector<std::string> paths;
    std::ifstream in("/proc/swaps");
    std::string line;
    std::getline(in, line); // the heading
    while (std::getline(in, line)) {
        paths.push_back(Unescaped(line.substr(0, line.find_first_of(" \t"))));
    }
    return paths;
}

} // namespace thntfs
