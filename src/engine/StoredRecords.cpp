#include "engine/StoredRecords.h"

#include "engine/ClusterSize.h"
#include "platform/files/File.h"
#include "platform/media/Medium.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::uint32_t kLargestStoredCount = 0xFF;
constexpr std::uint8_t kSmallestPower = 0xF4; // of a boot sector: 2 to the power of 12

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

} // namespace

StoredMftExtent EncodeMftExtent(const MftExtent& extent, bool hasNext) {
    StoredMftExtent stored{};
    PutNumber(stored, 0, extent.Clusters);
    PutNumber(stored, 4, extent.StartCluster);
    PutNumber(stored, 12, LinkWord(hasNext));
    return stored;
}

MftExtent DecodeMftExtent(const StoredMftExtent& stored, bool& hasNext) {
    MftExtent extent;
    extent.Clusters = U32At(stored, 0);
    extent.StartCluster = U64At(stored, 4);
    hasNext = U32At(stored, 12) != 0;
    return extent;
}

StoredCandidate EncodeCandidate(const PartitionCandidate& candidate, bool hasNext) {
    StoredCandidate stored{};
    PutNumber(stored, 8, candidate.StartSector);
    PutNumber(stored, 16, candidate.TotalSectors);
    PutNumber(stored, 24, candidate.MftSector);
    PutNumber(stored, 32, candidate.MftCluster);
    PutNumber(stored, 40, candidate.MftMirrCluster);
    PutNumber(stored, 48, candidate.VolumeSerial);
    PutNumber(stored, 56, candidate.IndexBlockBytes);
    PutNumber(stored, 60, candidate.ClusterBytes);
    PutNumber(stored, 64, candidate.FileRecordBytes);
    PutNumber(stored, 66, candidate.BytesPerSector);
    PutNumber(stored, 68, StoredClusterCount(candidate.SectorsPerCluster));
    PutNumber(stored, 69, candidate.SectorsPerFileRecord);
    PutNumber(stored, 70, candidate.SectorsPerIndexBlock);
    PutNumber(stored, 71, candidate.EvidenceFlags);
    PutNumber(stored, 72, LinkWord(hasNext));
    return stored;
}

PartitionCandidate DecodeCandidate(const StoredCandidate& stored, bool& hasNext) {
    PartitionCandidate candidate;
    candidate.StartSector = U64At(stored, 8);
    candidate.TotalSectors = U64At(stored, 16);
    candidate.MftSector = U64At(stored, 24);
    candidate.MftCluster = U64At(stored, 32);
    candidate.MftMirrCluster = U64At(stored, 40);
    candidate.VolumeSerial = U64At(stored, 48);
    candidate.IndexBlockBytes = U32At(stored, 56);
    candidate.ClusterBytes = U32At(stored, 60);
    candidate.FileRecordBytes = U16At(stored, 64);
    candidate.BytesPerSector = U16At(stored, 66);
    TakeClusterCount(U8At(stored, 68), candidate);
    candidate.SectorsPerFileRecord = U8At(stored, 69);
    candidate.SectorsPerIndexBlock = U8At(stored, 70);
    candidate.EvidenceFlags = U8At(stored, 71);
    hasNext = U32At(stored, 72) != 0;
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
    PutNumber(stored, 0, volume.TotalSectors);
    PutNumber(stored, 8, volume.MftSector);
    PutNumber(stored, 16, volume.MftCluster);
    PutNumber(stored, 24, volume.MftMirrCluster);
    PutNumber(stored, 32, volume.VolumeSerial);
    PutNumber(stored, 40, volume.StartSector);
    PutNumber(stored, 48, LinkWord(!volume.MftExtents.empty()));
    PutNumber(stored, 52, volume.MftRecordCount);
    PutNumber(stored, 56, volume.FileRecordBytes);
    PutNumber(stored, 60, volume.IndexBlockBytes);
    PutNumber(stored, 64, volume.ClusterBytes);
    PutNumber(stored, 68, volume.BytesPerSector);
    PutNumber(stored, 70, volume.SectorsPerFileRecord);
    PutNumber(stored, 71, volume.SectorsPerIndexBlock);
    PutNumber(stored, 72, StoredClusterCount(volume.SectorsPerCluster));
    PutNumber(stored, 73, volume.TurboScanRun);
    return stored;
}

VolumeParams DecodeVolume(const StoredVolume& stored, bool& hasExtents) {
    VolumeParams volume;
    volume.TotalSectors = U64At(stored, 0);
    volume.MftSector = U64At(stored, 8);
    volume.MftCluster = U64At(stored, 16);
    volume.MftMirrCluster = U64At(stored, 24);
    volume.VolumeSerial = U64At(stored, 32);
    volume.StartSector = U64At(stored, 40);
    hasExtents = U32At(stored, 48) != 0;
    volume.MftRecordCount = U32At(stored, 52);
    volume.FileRecordBytes = U32At(stored, 56);
    volume.IndexBlockBytes = U32At(stored, 60);
    volume.ClusterBytes = U32At(stored, 64);
    volume.BytesPerSector = U16At(stored, 68);
    volume.SectorsPerFileRecord = U8At(stored, 70);
    volume.SectorsPerIndexBlock = U8At(stored, 71);
    TakeClusterCount(U8At(stored, 72), volume);
    volume.TurboScanRun = U8At(stored, 73);
    return volume;
}

} // namespace thntfs
