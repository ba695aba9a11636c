#include "images/QcowClusters.h"

#include "images/StoredNumber.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::size_t kTableEntryBytes = 8;
constexpr std::uint32_t kMostTopEntries = 4U << 20U; // 32 MiB, as other readers have it
constexpr std::uint64_t kOffsetMask = 0x00FFFFFFFFFFFE00;
constexpr std::uint64_t kCompressedFlag = std::uint64_t{1} << 62U;
constexpr std::uint64_t kZerosFlag = 1;

ClusterPlace PlaceOfEntry(std::uint64_t entry, std::uint32_t version) {
    if ((entry & kCompressedFlag) != 0) {
        return ClusterPlace::Packed;
    }
    if (version >= 3 && (entry & kZerosFlag) != 0) {
        return ClusterPlace::Zeros;
    }
    return (entry & kOffsetMask) != 0 ? ClusterPlace::Stored : ClusterPlace::Below;
}

} // namespace

QcowHeader ReadQcowHeader(Medium& file) {
    std::array<std::uint8_t, 104> head{};
    QcowHeader header;
    if (file.ReadAt(0, head) != kErrorNone) {
        return header;
    }
    header.Version = BigNumberAt<std::uint32_t>(head, 4);
    header.NameOffset = BigNumberAt<std::uint64_t>(head, 8);
    header.NameBytes = BigNumberAt<std::uint32_t>(head, 16);
    header.ClusterBits = BigNumberAt<std::uint32_t>(head, 20);
    header.Encryption = BigNumberAt<std::uint32_t>(head, 32);
    header.TopEntries = BigNumberAt<std::uint32_t>(head, 36);
    header.TopOffset = BigNumberAt<std::uint64_t>(head, 40);
    header.Features = header.Version >= 3 ? BigNumberAt<std::uint64_t>(head, 72) : 0;
    return header;
}

QcowClusters::QcowClusters(Medium& file, const QcowHeader& header)
    : file_(file)
    , header_(header) {
    const std::uint64_t bytes = std::uint64_t{header.TopEntries} * kTableEntryBytes;
    if (header.TopEntries <= kMostTopEntries && header.TopOffset < file.SizeBytes() &&
        bytes <= file.SizeBytes() - header.TopOffset) {
        top_.resize(bytes);
        if (file.ReadAt(header.TopOffset, top_) != kErrorNone) {
            top_.clear();
        }
    }
}

bool QcowClusters::Covers(std::uint64_t diskBytes) const {
    const std::uint64_t tableReach = ClusterBytes() * (ClusterBytes() / kTableEntryBytes);
    return diskBytes == 0 || (diskBytes - 1) / tableReach < top_.size() / kTableEntryBytes;
}

ClusterStretch QcowClusters::StretchAt(std::uint64_t offset, std::uint64_t most) {
    ClusterStretch stretch = PlaceOf(offset);
    while (stretch.Bytes < most) {
        const ClusterStretch next = PlaceOf(offset + stretch.Bytes);
        const bool inRow =
            next.Place != ClusterPlace::Stored || next.FileOffset == stretch.FileOffset + stretch.Bytes;
        if (next.Place != stretch.Place || !inRow) {
            break;
        }
        stretch.Bytes += next.Bytes;
    }
    stretch.Bytes = std::min(stretch.Bytes, most);
    return stretch;
}

// One cluster, or what is left of it.
ClusterStretch QcowClusters::PlaceOf(std::uint64_t offset) {
    const std::uint64_t entriesInTable = ClusterBytes() / kTableEntryBytes;
    const std::uint64_t cluster = offset >> header_.ClusterBits;
    ClusterStretch stretch;
    stretch.Bytes = ClusterBytes() - offset % ClusterBytes();
    const std::uint64_t tableOffset =
        BigNumberAt<std::uint64_t>(top_,
                                   static_cast<std::size_t>(cluster / entriesInTable * kTableEntryBytes)) &
        kOffsetMask;
    if (tableOffset == 0) {
        stretch.Place = ClusterPlace::Below;
        return stretch;
    }
    const Table* table = nullptr;
    stretch.Error = LoadTable(tableOffset, table);
    if (stretch.Error == kErrorNone) {
        const auto at = static_cast<std::size_t>(cluster % entriesInTable * kTableEntryBytes);
        const auto entry = BigNumberAt<std::uint64_t>(*table, at);
        stretch.Place = PlaceOfEntry(entry, header_.Version);
        const bool here = stretch.Place == ClusterPlace::Stored || stretch.Place == ClusterPlace::Packed;
        if (here && !IsInFile(entry)) {
            stretch.Place = ClusterPlace::Unknown;
            stretch.Error = kErrorCrc; // the file is cut
        }
        if (stretch.Place == ClusterPlace::Stored) {
            stretch.FileOffset = (entry & kOffsetMask) + offset % ClusterBytes();
        }
    }
    return stretch;
}

// A compressed cluster counts its length in whole sectors, the last of which may lie behind the file's end.
bool QcowClusters::IsInFile(std::uint64_t entry) const {
    if ((entry & kCompressedFlag) != 0) {
        const unsigned placeBits = 62 - (header_.ClusterBits - 8);
        return (entry & ((std::uint64_t{1} << placeBits) - 1)) < file_.SizeBytes();
    }
    const std::uint64_t offset = entry & kOffsetMask;
    return offset < file_.SizeBytes() && ClusterBytes() <= file_.SizeBytes() - offset;
}

ErrorCode QcowClusters::LoadTable(std::uint64_t offset, const Table*& table) {
    KeptTable& kept = kept_[(offset >> header_.ClusterBits) % kept_.size()];
    if (kept.Offset != offset) {
        kept.Offset = 0;
        if (offset >= file_.SizeBytes() || ClusterBytes() > file_.SizeBytes() - offset) {
            return kErrorCrc; // the file is cut
        }
        kept.Entries.resize(ClusterBytes());
        if (const ErrorCode code = file_.ReadAt(offset, kept.Entries); code != kErrorNone) {
            return code;
        }
        kept.Offset = offset;
    }
    table = &kept.Entries;
    return kErrorNone;
}

} // namespace thntfs
