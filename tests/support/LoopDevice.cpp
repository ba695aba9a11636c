#include "support/LoopDevice.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace thntfs::test {

std::string OutputOf(const std::string& command) {
    FILE* pipe = ::popen((command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) {
        return {};
    }
    std::array<char, 4096> line{};
    const bool hasLine = std::fgets(line.data(), static_cast<int>(line.size()), pipe) != nullptr;
    if (::pclose(pipe) != 0 || !hasLine) {
        return {};
    }
    const std::string text = line.data();
    return text.substr(0, text.find('\n'));
}

bool MountNewFileSystem(const std::string& device, const std::string& path) {
    return OutputOf("PATH=$PATH:/sbin:/usr/sbin; mkfs.ext4 -qF " + device + " && mkdir -p '" + path +
                    "' && mount " + device + " '" + path + "' && echo done") == "done";
}

std::unique_ptr<LoopDevice> LoopDevice::Attach(const std::string& imagePath, const std::string& options) {
    // Without sysfs, as in a bare chroot, nobody can tell what a loop device shows, nor free it again.
    if (::geteuid() != 0 || !std::filesystem::exists("/sys/block")) {
        return nullptr;
    }
    const std::string path =
        OutputOf("PATH=$PATH:/sbin:/usr/sbin losetup --find --show " + options + " '" + imagePath + "'");
    return path.empty() ? nullptr : std::make_unique<LoopDevice>(path);
}

LoopDevice::LoopDevice(std::string path)
    : path_(std::move(path)) {}

LoopDevice::~LoopDevice() { OutputOf("PATH=$PATH:/sbin:/usr/sbin losetup --detach " + path_); }

} // namespace thntfs::test
