#pragma once

#include "content/ExactFile.h"
#include "mount/MountIndex.h"
#include "platform/system/Bytes.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace thntfs {

/// What a program asks of a file before it opens it.
struct MountedFacts {
    std::uint64_t Size = 0;      ///< bytes that can be read, which a save would write
    std::uint64_t Allocated = 0; ///< bytes that the medium has of them
    ExactTimes Times;
    bool Known = false; ///< the record could be read; else the size is the catalogue's
};

/// An open file of a mount.
struct MountedFile {
    CatalogueItem Item;
    std::unique_ptr<ExactStream> Stream; ///< null where the file has no content
    std::uint64_t Size = 0;
    bool HolesLost = false; ///< what looks like a hole may be bytes that can't be had
    bool Damaged = false;   ///< doubted before a byte of it was read
};

/// What a read gave. Where it failed, the byte behind those given can't be had.
struct MountedPiece {
    std::size_t Bytes = 0;
    bool Failed = false;
};

/// The catalogue's files as a mount needs them. The engine knows one worker: all of this may be called from
/// many threads, which take turns here, and the tree itself answers without it (MountIndex). A reader with a
/// state of its own would cost each program that looks at a file a catalogue and a volume, and gain nothing
/// where one medium is what all wait for. Throws nothing but std::bad_alloc: what the medium doesn't give is
/// told in the result. What was read is kept by the system's page cache and nowhere else.
class MountedVolume {
public:
    explicit MountedVolume(const MountIndex& index)
        : index_(index) {}

    /// Of a file, or of a folder, whose size is 0. The root has none, nor has a folder that is known by its
    /// number alone.
    MountedFacts FactsOf(MountIndex::Node node);

    /// Null where the file's record can't be had.
    std::unique_ptr<MountedFile> Open(MountIndex::Node file);

    /// Reads up to the buffer's size or the file's end. A sector that can't be read, a unit that can't be
    /// decompressed and clusters behind the medium's end are never given as zeros.
    MountedPiece Read(MountedFile& file, std::uint64_t offset, Bytes buffer);

    /// As ExactStream has them; the file's end where there are none.
    std::uint64_t NextData(const MountedFile& file, std::uint64_t offset);
    std::uint64_t NextHole(const MountedFile& file, std::uint64_t offset);

    /// Names of extended attributes: "user.NAME" for the stream NAME, as the system's own driver for such
    /// volumes has them, so that a copy onto one brings the streams along; behind them ours.
    std::vector<std::string> AttributesOf(MountIndex::Node node);

    /// How the getting of an attribute ended.
    enum class Got { Value, NoSuch, TooLarge, Failed };
    /// `most`: the size that values may have.
    Got Attribute(MountIndex::Node node, std::string_view name, std::size_t most, std::string& value);

private:
    bool OpenRecord(MountIndex::Node node, CatalogueItem& item);
    std::optional<std::string> OwnAttribute(const CatalogueItem& item, bool opened, std::string_view name);
    Got StreamValue(std::string_view stream, std::size_t most, std::string& value);
    bool ReadWhole(MountedFile& file, std::uint64_t offset, Bytes buffer);
    bool Renew(MountedFile& file);
    std::size_t SoundBytes(MountedFile& file, std::uint64_t offset, Bytes buffer);

    const MountIndex& index_;
    std::mutex turn_;
    ExactFile reader_; ///< of the record read last
};

} // namespace thntfs
