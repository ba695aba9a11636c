#pragma once

#include "platform/system/Bytes.h"
#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct archive;

namespace thntfs {

class File;

/// What an archive's directory tells of an entry.
struct ZipEntry {
    std::string Path; ///< UTF-8, with '/' between its names and none in front
    bool Folder = false;
    bool Stored = false;                       ///< a file whose bytes aren't compressed; needs its size
    std::optional<std::uint64_t> Size = {};    ///< bytes that a file has at the most
    std::optional<std::int64_t> Modified = {}; ///< seconds since 1970; the present where it isn't known
};

/// A ZIP archive that is written from end to end: one entry behind the other, with 64-bit sizes where they
/// need them. An entry that is dropped leaves its bytes behind at the most, but for the last one: that takes
/// none. So a file that was cut off, or that the disk had no room for, does the others no harm.
class ZipArchive {
public:
    /// Bytes that may still be written, none where that isn't known.
    using RoomOf = std::function<std::optional<std::uint64_t>()>;

    /// `file`: nothing has been written to it; the archive's owner keeps it.
    ZipArchive(File& file, RoomOf room);
    ~ZipArchive();
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    /// Begins an entry. One that was begun must have been ended or dropped. Once a write has failed, nothing
    /// more is taken.
    ErrorCode Begin(const ZipEntry& entry);
    /// Appends to the entry's content.
    ErrorCode Add(ConstBytes bytes);
    /// The entry is whole, and handed to the system; or gives what went wrong with it.
    ErrorCode End();
    /// The entry begun last is none.
    void Drop();

    /// Why nothing more is taken, if it isn't.
    [[nodiscard]] ErrorCode Failure() const { return failure_; }

    /// Entries ended and not dropped.
    [[nodiscard]] std::uint64_t Entries() const { return begun_ - dropped_.size(); }

    /// Writes the directory. The archive is whole then, though not yet synced.
    ErrorCode Finish();

private:
    void Take(ConstBytes bytes);
    void Flush();
    [[nodiscard]] bool HasRoom() const;
    ErrorCode Note(bool done);

    File& file_;
    RoomOf room_;
    std::unique_ptr<archive, void (*)(archive*)> writer_;
    std::vector<std::uint8_t> pending_;  ///< not yet written
    std::uint64_t end_ = 0;              ///< of what was written, in bytes
    std::uint64_t keptEnd_ = 0;          ///< of the entries that count
    std::uint64_t syncStarted_ = 0;      ///< up to here it is on its way to the device
    std::uint64_t begun_ = 0;            ///< entries
    std::vector<std::uint64_t> dropped_; ///< which of them
    std::uint64_t directoryBytes_ = 0;   ///< what the directory will need, or more
    ErrorCode failure_ = kErrorNone;     ///< the first; nothing is written after it but the directory
    bool closing_ = false;
};

} // namespace thntfs
