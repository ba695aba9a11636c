#pragma once

#include "CliHelpers.h"
#include "support/LoopDevice.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace thntfs::test {

inline constexpr const char* kNoLoops = "loop devices are not to be had here";

/// A folder to work in, and loop devices that go away at the end, after what is mounted there.
class LoopFixture : public testing::Test {
protected:
    ~LoopFixture() override { OutputOf("umount '" + mount_ + "'"); }

    /// Path of a device over an image; empty where there can be none.
    std::string Attach(const std::string& image, const std::string& options = "") {
        auto device = LoopDevice::Attach(image, options);
        if (device == nullptr) {
            return {};
        }
        devices_.push_back(std::move(device));
        return devices_.back()->Path();
    }

    /// Mounts at mount_; `what` are mount's words but for the folder. False where that can't be done here.
    bool Mount(const std::string& what) {
        return OutputOf("mkdir -p '" + mount_ + "' && mount " + what + " '" + mount_ + "' && echo done") ==
               "done";
    }

    /// The same with a file system made anew on a device.
    bool MountNewFileSystem(const std::string& device) {
        return OutputOf("PATH=$PATH:/sbin:/usr/sbin mkfs.ext4 -qF " + device + " && echo done") == "done" &&
               Mount(device);
    }

    ScratchFolder scratch_;
    std::string mount_ = scratch_ / "mount";
    std::vector<std::unique_ptr<LoopDevice>> devices_;
};

} // namespace thntfs::test
