#pragma once

#include <memory>
#include <string>

namespace thntfs::test {

/// Runs a shell command; gives its first line of output, empty where it failed.
std::string OutputOf(const std::string& command);

/// Mounts a file system, made anew on a device, at a path. False where that can't be done here.
bool MountNewFileSystem(const std::string& device, const std::string& path);

/// A loop device over an image file, which only the superuser gets. The destructor frees it.
class LoopDevice {
public:
    /// `options` go to losetup. Null where there can be no loop device here.
    static std::unique_ptr<LoopDevice> Attach(const std::string& imagePath, const std::string& options = "");

    explicit LoopDevice(std::string path);
    ~LoopDevice();
    LoopDevice(const LoopDevice&) = delete;
    LoopDevice& operator=(const LoopDevice&) = delete;

    [[nodiscard]] const std::string& Path() const { return path_; }

private:
    std::string path_;
};

} // namespace thntfs::test
