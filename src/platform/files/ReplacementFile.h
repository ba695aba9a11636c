#pragma once

#include "platform/system/ErrorCodes.h"

#include <memory>
#include <string>

namespace thntfs {

class File;

/// A file that is written beside the one whose name it is to have. It takes the name in one step when it is
/// complete, so nobody ever sees half a file, and whatever goes wrong before leaves an older file as it was,
/// a crash of the machine included.
///
/// Its own name, `NAME.th-ntfs-` with twelve hexadecimal digits and `.part`, is one that nothing has. A file
/// of such a name that a run of this user has left behind goes when the next one writes NAME.
class ReplacementFile {
public:
    ReplacementFile();
    /// Deletes what was written, unless Commit has given it its name.
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    /// Creates the file for a target path. A link keeps its place: the file that it leads to is replaced.
    /// Fails as creating the target itself would: for a folder, a missing folder above it, an older file that
    /// may not be written. To be called once.
    ErrorCode Create(const std::string& target);

    /// The file, once Create has succeeded.
    [[nodiscard]] File& Handle() { return *file_; }

    /// Waits until all is on the device, closes the file and gives it the target's name, with the rights of
    /// an older file of that name. After a failure the target is as it was, unless it is the folder that the
    /// device has refused: then either may stand there.
    ErrorCode Commit();

private:
    class Part;

    std::string target_;
    std::unique_ptr<Part> part_;
    std::unique_ptr<File> file_;
};

} // namespace thntfs
