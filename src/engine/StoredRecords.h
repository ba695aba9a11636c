#pragma once

#include "engine/LittleEndian.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace thntfs {

class File;
class Medium;

// Each record here has a natural form in memory and a packed form in the scan information files. The packed
// forms hold handles and links as 4 bytes: a handle is stored as 0, a link as 1 where another record follows.
// They hold a cluster's sectors in one byte: more than 255 are stored as 0, and ClusterBytes tells them.

/// One run of a non-resident attribute, in clusters relative to the volume.
struct MftExtent {
    std::uint32_t Clusters = 0;     ///< length of the run in clusters
    std::uint64_t StartCluster = 0; ///< first logical cluster; 0 together with Clusters 0 for a sparse run
};

inline constexpr std::size_t kStoredMftExtentBytes = 16;
using StoredMftExtent = std::array<std::uint8_t, kStoredMftExtentBytes>;
static_assert(sizeof(StoredMftExtent) == kStoredMftExtentBytes);

/// `hasNext`: another extent follows, which the link promises.
StoredMftExtent EncodeMftExtent(const MftExtent& extent, bool hasNext);
/// Decodes an extent; `hasNext` tells whether its link promises another record.
MftExtent DecodeMftExtent(const StoredMftExtent& stored, bool& hasNext);

/// One volume of a medium, as the partition table or the search found it.
struct PartitionCandidate {
    std::uint64_t StartSector = 0;    ///< absolute first sector of the volume
    std::uint64_t TotalSectors = 0;   ///< sectors in the volume
    std::uint64_t MftSector = 0;      ///< absolute sector of a record 0 of the Master File Table
    std::uint64_t MftCluster = 0;     ///< logical cluster of the Master File Table
    std::uint64_t MftMirrCluster = 0; ///< logical cluster of its mirror
    std::uint64_t VolumeSerial = 0;   ///< serial number of the boot sector, 0 where none was seen
    std::uint32_t IndexBlockBytes = 0;
    std::uint32_t ClusterBytes = 0;
    std::uint16_t FileRecordBytes = 0;
    std::uint32_t SectorsPerCluster = 0;
    std::uint16_t BytesPerSector = 0;
    std::uint8_t SectorsPerFileRecord = 0;
    std::uint8_t SectorsPerIndexBlock = 0;
    std::uint8_t EvidenceFlags = 0; ///< bits kEvidence…
};

inline constexpr std::uint8_t kEvidenceBootSector = 1;
inline constexpr std::uint8_t kEvidenceTwins = 2;
inline constexpr std::uint8_t kEvidenceMftWithMirr = 4;
inline constexpr std::uint8_t kEvidenceSecondBootSector = 8;

inline constexpr std::size_t kStoredCandidateBytes = 76;
using StoredCandidate = std::array<std::uint8_t, kStoredCandidateBytes>;
static_assert(sizeof(StoredCandidate) == kStoredCandidateBytes);

/// `hasNext`: another candidate follows, which the link promises.
StoredCandidate EncodeCandidate(const PartitionCandidate& candidate, bool hasNext);
/// Decodes a candidate; `hasNext` tells whether its link promises another record.
PartitionCandidate DecodeCandidate(const StoredCandidate& stored, bool& hasNext);

/// One medium. The record that is open for reading is EngineState::SourceDisk.
struct DiskRecord {
    DiskRecord();
    ~DiskRecord();
    DiskRecord(DiskRecord&&) noexcept;
    DiskRecord& operator=(DiskRecord&&) noexcept;

    std::u16string Description; ///< device path or absolute path of the image file, at most 255 units
    std::unique_ptr<Medium> MediaHandle;
    std::unique_ptr<File> WriteHandle; ///< the target of a copy, open for writing; used in TargetDisk alone
    std::uint16_t BytesPerSector = 0;  ///< sector size of the medium
    std::uint64_t TotalSectors = 0;    ///< size of the medium in sectors
    std::vector<PartitionCandidate> Partitions; ///< FirstPartition and LastPartition of the stored form
};

inline constexpr std::size_t kMaxDescriptionUnits = 255;
inline constexpr std::size_t kStoredDiskBytes = 542;
using StoredDisk = std::array<std::uint8_t, kStoredDiskBytes>;
static_assert(sizeof(StoredDisk) == kStoredDiskBytes);

StoredDisk EncodeDisk(const DiskRecord& disk);
/// Decodes all but the handles and the list, which stay empty; `hasPartitions` tells whether a candidate
/// follows.
DiskRecord DecodeDisk(const StoredDisk& stored, bool& hasPartitions);

/// The volume in work.
struct VolumeParams {
    std::uint64_t TotalSectors = 0;   ///< sectors in the volume
    std::uint64_t MftSector = 0;      ///< absolute sector of record 0 of the Master File Table
    std::uint64_t MftCluster = 0;     ///< logical cluster of the Master File Table
    std::uint64_t MftMirrCluster = 0; ///< logical cluster of its mirror
    std::uint64_t VolumeSerial = 0;
    std::uint64_t StartSector = 0; ///< absolute first sector of the volume
    std::vector<MftExtent> MftExtents;
    std::uint32_t MftRecordCount = 0; ///< from clusters; feeds the progress display alone
    std::uint32_t FileRecordBytes = 0;
    std::uint32_t IndexBlockBytes = 0;
    std::uint32_t ClusterBytes = 0;
    std::uint32_t SectorsPerCluster = 0;
    std::uint16_t BytesPerSector = 0; ///< the volume's own sector size
    std::uint8_t SectorsPerFileRecord = 0;
    std::uint8_t SectorsPerIndexBlock = 0;
    std::uint8_t TurboScanRun = 0; ///< 1 once a Turbo Scan has started
};

inline constexpr std::size_t kStoredVolumeBytes = 74;
using StoredVolume = std::array<std::uint8_t, kStoredVolumeBytes>;
static_assert(sizeof(StoredVolume) == kStoredVolumeBytes);

StoredVolume EncodeVolume(const VolumeParams& volume);
/// Decodes all but the extents, which stay empty; `hasExtents` tells whether an extent follows.
VolumeParams DecodeVolume(const StoredVolume& stored, bool& hasExtents);

} // namespace thntfs
