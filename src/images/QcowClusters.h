#pragma once

#include "platform/media/Medium.h"

#include <array>
#include <cstdint>
#include <vector>

namespace thntfs {

/// Where the bytes of a cluster are.
enum class ClusterPlace : std::uint8_t {
    Stored, ///< in the image, as they are
    Packed, ///< in the image, compressed
    Zeros,  ///< nowhere: they are zeros, whatever the image builds on
    Below,  ///< in the image that it builds on; zeros where it doesn't
    Unknown ///< its table can't be read
};

/// A stretch of clusters that are of one kind.
struct ClusterStretch {
    ClusterPlace Place = ClusterPlace::Unknown;
    std::uint64_t Bytes = 0;      ///< from the asked offset on, at least 1
    std::uint64_t FileOffset = 0; ///< of stored ones, in bytes: they lie in a row
    ErrorCode Error = kErrorNone; ///< why it is unknown
};

/// What stands in the header of a QCOW2 image, versions 2 and 3.
struct QcowHeader {
    std::uint32_t Version = 0;
    std::uint64_t NameOffset = 0; ///< of the image that it builds on, 0 for none
    std::uint32_t NameBytes = 0;
    unsigned ClusterBits = 0;
    std::uint32_t Encryption = 0; ///< 0 for none
    std::uint32_t TopEntries = 0; ///< of the first table
    std::uint64_t TopOffset = 0;
    std::uint64_t Features = 0; ///< that a reader must know
};

QcowHeader ReadQcowHeader(Medium& file);

/// The cluster tables of an image. The library that reads packed clusters doesn't know those that are told to
/// be zeros (version 3), and stands still where an image builds on one that isn't a QCOW2.
class QcowClusters {
public:
    /// The file outlives it. `header` is of version 2 or 3.
    QcowClusters(Medium& file, const QcowHeader& header);

    /// Whether the first table could be read and has entries for a disk of this size.
    [[nodiscard]] bool Covers(std::uint64_t diskBytes) const;

    /// The stretch at a byte offset of the disk, of at most `most` bytes.
    ClusterStretch StretchAt(std::uint64_t offset, std::uint64_t most);

private:
    using Table = std::vector<std::uint8_t>;
    struct KeptTable {
        std::uint64_t Offset = 0; ///< in the file; 0 while there is none
        Table Entries = {};
    };

    ClusterStretch PlaceOf(std::uint64_t offset);
    [[nodiscard]] bool IsInFile(std::uint64_t entry) const;
    ErrorCode LoadTable(std::uint64_t offset, const Table*& table);
    [[nodiscard]] std::uint64_t ClusterBytes() const { return std::uint64_t{1} << header_.ClusterBits; }

    Medium& file_;
    QcowHeader header_;
    Table top_;
    std::array<KeptTable, 8> kept_;
};

} // namespace thntfs
