#pragma once

#include "disktools/CopyRules.h"
#include "platform/files/posix/FileDescriptor.h"

#include <cstdint>
#include <memory>
#include <string>

namespace thntfs {

class Medium;

/// The disk, or the file that keeps its size, which SourceDisk is cloned onto.
class CloneTarget {
public:
    explicit CloneTarget(std::string path)
        : path_(std::move(path)) {}

    /// Asks how large it is, which what follows relies on. A disk that this user may not open is asked for
    /// here, once, to be written over.
    CopyVerdict Look();

    /// What stands on it, to be read; null on failure.
    [[nodiscard]] std::unique_ptr<Medium> OpenContents() const;

    [[nodiscard]] const std::string& Path() const { return path_; }
    [[nodiscard]] std::uint64_t SizeBytes() const { return bytes_; }

    /// What there is to mind where its sectors have another size than SourceDisk's; else empty.
    [[nodiscard]] std::string SectorRemark() const;

    /// Opens it for writing over; Engine.TargetDisk owns it.
    [[nodiscard]] CopyVerdict Open();

private:
    [[nodiscard]] CopyVerdict NotOpened(CopyRefusal why, ErrorCode code) const;

    std::string path_;
    FileDescriptor lent_; ///< of a disk that was asked for, until it is opened
    std::uint64_t bytes_ = 0;
    std::uint32_t sectorBytes_ = 0; ///< 0 for a file
};

/// Closes the target of a clone and has the system read the partitions that are on it now. Where it doesn't,
/// a line in the log says so: the clone is whole all the same.
void CloseClone(const std::string& targetPath);

} // namespace thntfs
