#include "engine/StoredRecords.h"

#include "engine/ClusterSize.h"
#include "engine/StoredFields.h"
#include "platform/files/File.h"
#include "platform/media/Medium.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::uint32_t kLargestStoredCount = 0xFF;
constexpr std::uint8_t kSmallestPower = 0xF4; // of a boot sector: 2 to the power of 12

// Places of what is stored in another form than it has in memory.
constexpr std::uint64_t kExtentLinkAt = 12;
constexpr std::uint64_t kCandidateSectorsPerClusterAt = 68;
constexpr std::uint64_t kCandidateLinkAt = 72;
constexpr std::uint64_t kVolumeLinkAt = 48;
constexpr std::uint64_t kVolumeSectorsPerClusterAt = 72;

std::uint32_t LinkWord(bool linked) { return linked ? 1U : 0U; }

std::uint8_t StoredClusterCount(std::uint32_t sectors) {
    return sectors <= kLargestStoredCount ? static_cast<std::uint8_t>(sectors) : std::uint8_t{0};
}

// The byte that a boot sector has for a large cluster was once stored, and multiplied, as a plain count.
template <typename Record>
void TakeClusterCount(std::uint8_t stored, Record& record) {
    record.SectorsPerCluster = stored;
    if (stored == 0 && record.BytesPerSector != 0) {
        const std::uint32_t sectors = record.ClusterBytes / record.BytesPerSector;
        record.SectorsPerCluster = sectors > kLargestStoredCount ? sectors : 0;
    } else if (stored >= kSmallestPower &&
               record.ClusterBytes == stored * std::uint32_t{record.BytesPerSector}) {
        record.SectorsPerCluster = SectorsPerClusterOf(stored);
        record.ClusterBytes = record.SectorsPerCluster * record.BytesPerSector;
    }
}

template <typename Extent, typename Visitor>
void VisitExtent(Extent& extent, const Visitor& field) {
    field(0, extent.Clusters);
    field(4, extent.StartCluster);
}

template <typename Candidate, typename Visitor>
void VisitCandidate(Candidate& candidate, const Visitor& field) {
    field(8, candidate.StartSector);
    field(16, candidate.TotalSectors);
    field(24, candidate.MftSector);
    field(32, candidate.MftCluster);
    field(40, candidate.MftMirrCluster);
    field(48, candidate.VolumeSerial);
    field(56, candidate.IndexBlockBytes);
    field(60, candidate.ClusterBytes);
    field(64, candidate.FileRecordBytes);
    field(66, candidate.BytesPerSector);
    field(69, candidate.SectorsPerFileRecord);
    field(70, candidate.SectorsPerIndexBlock);
    field(71, candidate.EvidenceFlags);
}

template <typename Volume, typename Visitor>
void VisitVolume(Volume& volume, const Visitor& field) {
    field(0, volume.TotalSectors);
    field(8, volume.MftSector);
    field(16, volume.MftCluster);
    field(24, volume.MftMirrCluster);
    field(32, volume.VolumeSerial);
    field(40, volume.StartSector);
    field(52, volume.MftRecordCount);
    field(56, volume.FileRecordBytes);
    field(60, volume.IndexBlockBytes);
    field(64, volume.ClusterBytes);
    field(68, volume.BytesPerSector);
    field(70, volume.SectorsPerFileRecord);
    field(71, volume.SectorsPerIndexBlock);
    field(73, volume.TurboScanRun);
}

} // namespace

StoredMftExtent EncodeMftExtent(const MftExtent& extent, bool hasNext) {
    StoredMftExtent stored{};
    VisitExtent(extent, FieldWriter(stored));
    PutNumber(stored, kExtentLinkAt, LinkWord(hasNext));
    return stored;
}

MftExtent DecodeMftExtent(const StoredMftExtent& stored, bool& hasNext) {
    MftExtent extent;
    VisitExtent(extent, FieldReader(stored));
    hasNext = U32At(stored, kExtentLinkAt) != 0;
    return extent;
}

StoredCandidate EncodeCandidate(const PartitionCandidate& candidate, bool hasNext) {
    StoredCandidate stored{};
    VisitCandidate(candidate, FieldWriter(stored));
    PutNumber(stored, kCandidateSectorsPerClusterAt, StoredClusterCount(candidate.SectorsPerCluster));
    PutNumber(stored, kCandidateLinkAt, LinkWord(hasNext));
    return stored;
}

PartitionCandidate DecodeCandidate(const StoredCandidate& stored, bool& hasNext) {
    PartitionCandidate candidate;
    VisitCandidate(candidate, FieldReader(stored));
    TakeClusterCount(U8At(stored, kCandidateSectorsPerClusterAt), candidate);
    hasNext = U32At(stored, kCandidateLinkAt) != 0;
    return candidate;
}

// Here the handles' types are known, which the header spares all who include it.
DiskRecord::DiskRecord() = default;
DiskRecord::~DiskRecord() = default;
DiskRecord::DiskRecord(DiskRecord&&) noexcept = default;
DiskRecord& DiskRecord::operator=(DiskRecord&&) noexcept = default;

StoredDisk EncodeDisk(const DiskRecord& disk) {
    StoredDisk stored{};
    const std::size_t units = std::min(disk.Description.size(), kMaxDescriptionUnits);
    for (std::size_t i = 0; i < units; ++i) {
        PutNumber(stored, 2 * i, static_cast<std::uint16_t>(disk.Description[i]));
    }
    PutNumber(stored, 516, disk.BytesPerSector);
    PutNumber(stored, 518, disk.TotalSectors);
    PutNumber(stored, 534, LinkWord(!disk.Partitions.empty()));
    PutNumber(stored, 538, LinkWord(!disk.Partitions.empty()));
    return stored;
}

DiskRecord DecodeDisk(const StoredDisk& stored, bool& hasPartitions) {
    DiskRecord disk;
    for (std::size_t i = 0; i < kMaxDescriptionUnits; ++i) {
        const std::uint16_t unit = U16At(stored, 2 * i);
        if (unit == 0) {
            break;
        }
        disk.Description.push_back(static_cast<char16_t>(unit));
    }
    disk.BytesPerSector = U16At(stored, 516);
    disk.TotalSectors = U64At(stored, 518);
    hasPartitions = U32At(stored, 534) != 0;
    return disk;
}

StoredVolume EncodeVolume(const VolumeParams& volume) {
    StoredVolume stored{};
    VisitVolume(volume, FieldWriter(stored));
    PutNumber(stored, kVolumeSectorsPerClusterAt, StoredClusterCount(volume.SectorsPerCluster));
    PutNumber(stored, kVolumeLinkAt, LinkWord(!volume.MftExtents.empty()));
    return stored;
}

VolumeParams DecodeVolume(const StoredVolume& stored, bool& hasExtents) {
    VolumeParams volume;
    VisitVolume(volume, FieldReader(stored));
    TakeClusterCount(U8At(stored, kVolumeSectorsPerClusterAt), volume);
    hasExtents = U32At(stored, kVolumeLinkAt) != 0;
    return volume;
}

} // namespace thntfs
