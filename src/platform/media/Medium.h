#pragma once

#include "platform/system/Bytes.h"
#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace thntfs {

struct LentDisk;

/// An open medium: anything that yields bytes at an offset and has a size. A disk, an image file, and in
/// tests a medium that fails where it is told to. It can be read and nothing else.
class Medium {
public:
    Medium() = default;
    virtual ~Medium() = default;
    Medium(const Medium&) = delete;
    Medium& operator=(const Medium&) = delete;

    /// Reads buffer.size() bytes at a byte offset. A read that reaches the end of the medium succeeds and
    /// leaves the rest of the buffer alone. On failure the buffer may hold a part of the data.
    ///
    /// Errors: 23 for a sector that the medium cannot give, 21 for a device that is gone or not ready,
    /// 5 for no permission, 1117 for a transport failure that may pass.
    /// A request of at most one logical sector of a device reaches just that sector: a bad neighbour within
    /// the same memory page does not fail it.
    virtual ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) = 0;

    /// A hint: single places all over the medium are going to be read (true), or stretches from front to back
    /// (false, as it is at first). Reading ahead of single places costs a failing disk, and the user, its
    /// time.
    virtual void ExpectScatteredReads(bool /*scattered*/) {}

    /// Size in bytes, as found when the medium was opened.
    [[nodiscard]] virtual std::uint64_t SizeBytes() const = 0;

    /// Bytes per logical sector that the device itself states, 0 for an image file.
    [[nodiscard]] virtual std::uint32_t DeviceSectorBytes() const = 0;

    /// Bytes per logical sector that the format of an image file states, 0 where it states none.
    [[nodiscard]] virtual std::uint32_t ImageSectorBytes() const { return 0; }

    /// Paths of the files that it is read from, beside the one that it was opened by.
    [[nodiscard]] virtual std::vector<std::string> FurtherFiles() const { return {}; }

    /// What it reads where the disk was lent (platform/media/LentDisk.h), null where it wasn't.
    [[nodiscard]] virtual const LentDisk* Lent() const { return nullptr; }
};

struct MediumResult {
    std::unique_ptr<Medium> Handle; ///< null on failure
    ErrorCode Error = kErrorNone;
    std::string Why = {}; ///< a sentence, where the code alone doesn't tell
};

/// Opens a block device or a regular file for reading only. Anything else (a folder, a pipe) fails with
/// kErrorInvalidParameter or kErrorDirectory. The caller owns the handle.
MediumResult OpenMedium(const std::string& path);

} // namespace thntfs
