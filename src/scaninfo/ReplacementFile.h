#pragma once

#include "platform/File.h"

#include <memory>
#include <string>

namespace thntfs {

/// A file that is written beside the one whose name it is to have. It takes the name in one step when it is
/// complete, so nobody ever sees half a file, and whatever goes wrong before leaves an older file as it was.
class ReplacementFile {
public:
    ReplacementFile() = default;
    /// Deletes what was written, unless Commit has given it its name.
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    /// Creates the file for a target path. Fails as creating the target itself would: for a folder, a missing
    /// folder above it, an older file that may not be written. To be called once.
    ErrorCode Create(const std::string& target);

    /// The file, once Create has succeeded.
    [[nodiscard]] File& Handle() { return *file_; }

    /// Waits until all is on the device, closes the file and gives it the target's name. After a failure the
    /// target is as it was.
    ErrorCode Commit();

private:
    ErrorCode CreateBeside();
    void KeepPermissions() const;

    std::string target_;
    std::string path_; ///< empty where there is no file of ours
    std::unique_ptr<File> file_;
};

} // namespace thntfs
