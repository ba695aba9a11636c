#include "partitions/BootSector.h"

#include "engine/ClusterSize.h"
#include "engine/EngineState.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::uint64_t kBytesPerSectorAt = 11;
constexpr std::uint64_t kSectorsPerClusterAt = 13;
constexpr std::uint64_t kTotalSectorsAt = 40;
constexpr std::uint64_t kMftClusterAt = 48;
constexpr std::uint64_t kMftMirrClusterAt = 56;
constexpr std::uint64_t kRecordSizeAt = 64;
constexpr std::uint64_t kIndexSizeAt = 68;
constexpr std::uint64_t kSerialAt = 72;

constexpr std::uint16_t kBitNine = 0x200;

// The records of every driver are smaller.
constexpr std::uint32_t kMaxVolumeRecordBytes = 32768;

bool IsPossibleSectorSize(std::uint16_t bytes) {
    return (bytes & kLowNineBits) == 0 && (bytes == kBitNine || (bytes & kBitNine) == 0);
}

// A count, or one of the powers of two that clusters of more than 128 sectors have.
bool IsPossibleClusterByte(std::uint8_t stored) {
    return stored == 1 || (stored != 0 && stored % 2 == 0) || (stored >= 0xF4 && stored <= 0xF8);
}

bool IsPossiblePosition(std::uint64_t value) {
    return value != 0 &&
           (static_cast<std::uint32_t>(value) & static_cast<std::uint32_t>(value >> 32U)) != 0xFFFFFFFF;
}

// Size of a file record or an index block. The stored byte counts clusters, or, negative, is a power of two
// of bytes.
struct StructureSize {
    std::uint8_t Sectors;
    std::uint64_t Bytes;
};

StructureSize DecodeSize(std::uint8_t stored, std::uint32_t sectorsPerCluster, std::uint16_t bytesPerSector) {
    if (stored < 0x80) {
        const auto sectors = static_cast<std::uint8_t>(stored * sectorsPerCluster);
        return {sectors, std::uint64_t{sectors} * bytesPerSector};
    }
    const unsigned exponent = 0x100U - stored;
    const std::uint64_t bytes = exponent < 64 ? std::uint64_t{1} << exponent : 0;
    const std::uint64_t sectors = bytesPerSector != 0 ? bytes / bytesPerSector : 0;
    return {static_cast<std::uint8_t>(sectors), bytes};
}

void DecodeCommon(ConstBytes sector, std::uint64_t start, std::uint16_t bytesPerSector,
                  PartitionCandidate& candidate) {
    candidate.StartSector = start;
    candidate.MftCluster = U64At(sector, kMftClusterAt);
    candidate.MftMirrCluster = U64At(sector, kMftMirrClusterAt);
    candidate.VolumeSerial = U64At(sector, kSerialAt);
    candidate.SectorsPerCluster = BootSectorsPerCluster(sector);
    candidate.MftSector = start + candidate.MftCluster * candidate.SectorsPerCluster;
    candidate.BytesPerSector = bytesPerSector;
    candidate.ClusterBytes = std::uint32_t{bytesPerSector} * candidate.SectorsPerCluster;
}

} // namespace

bool IsNtfsBootSector(ConstBytes sector) {
    if (U8At(sector, 0) == 0 || U8At(sector, 1) == 0 || U8At(sector, 2) != 0x90) {
        return false;
    }
    if (U32At(sector, 32) != 0 || U16At(sector, 36) != 0x80) {
        return false;
    }
    if (!IsPossibleSectorSize(U16At(sector, kBytesPerSectorAt)) ||
        !IsPossibleClusterByte(U8At(sector, kSectorsPerClusterAt))) {
        return false;
    }
    if (U8At(sector, kRecordSizeAt) == 0 || U8At(sector, kIndexSizeAt) == 0) {
        return false;
    }
    return IsPossiblePosition(U64At(sector, kMftClusterAt)) &&
           IsPossiblePosition(U64At(sector, kMftMirrClusterAt)) &&
           IsPossiblePosition(U64At(sector, kTotalSectorsAt));
}

std::uint64_t BootTotalSectors(ConstBytes sector) { return U64At(sector, kTotalSectorsAt); }
std::uint64_t BootMftCluster(ConstBytes sector) { return U64At(sector, kMftClusterAt); }
std::uint32_t BootSectorsPerCluster(ConstBytes sector) {
    return SectorsPerClusterOf(U8At(sector, kSectorsPerClusterAt));
}

void DecodeTableBootSector(ConstBytes sector, std::uint64_t start, std::uint32_t totalSectors,
                           PartitionCandidate& candidate) {
    const std::uint16_t stated = U16At(sector, kBytesPerSectorAt);
    const bool usable = stated != 0 && (stated & kLowNineBits) == 0;
    DecodeCommon(sector, start, usable ? stated : Engine.SourceDisk.BytesPerSector, candidate);
    candidate.TotalSectors = totalSectors;

    const StructureSize index =
        DecodeSize(U8At(sector, kIndexSizeAt), candidate.SectorsPerCluster, candidate.BytesPerSector);
    candidate.SectorsPerIndexBlock = index.Sectors;
    candidate.IndexBlockBytes = static_cast<std::uint32_t>(index.Bytes);
    const StructureSize record =
        DecodeSize(U8At(sector, kRecordSizeAt), candidate.SectorsPerCluster, candidate.BytesPerSector);
    candidate.SectorsPerFileRecord = record.Sectors;
    candidate.FileRecordBytes = static_cast<std::uint16_t>(record.Bytes);
}

void DecodeFoundBootSector(ConstBytes sector, std::uint64_t start, PartitionCandidate& candidate) {
    DecodeCommon(sector, start, U16At(sector, kBytesPerSectorAt), candidate);
    candidate.TotalSectors = U64At(sector, kTotalSectorsAt);
    candidate.EvidenceFlags = kEvidenceBootSector;

    const auto sectorsOf = [&](std::uint64_t at) {
        return DecodeSize(U8At(sector, at), candidate.SectorsPerCluster, candidate.BytesPerSector).Sectors;
    };
    candidate.SectorsPerIndexBlock = sectorsOf(kIndexSizeAt);
    candidate.SectorsPerFileRecord = sectorsOf(kRecordSizeAt);
    candidate.FileRecordBytes =
        static_cast<std::uint16_t>(candidate.SectorsPerFileRecord * candidate.BytesPerSector);
}

bool DecodeVolume(ConstBytes sector, std::uint64_t start, std::uint64_t totalSectors,
                  PartitionCandidate& candidate) {
    DecodeTableBootSector(sector, start, 0, candidate);
    const std::uint32_t medium = Engine.SourceDisk.BytesPerSector;
    const std::uint64_t clusterBytes = std::uint64_t{candidate.BytesPerSector} * candidate.SectorsPerCluster;
    if (medium == 0 || clusterBytes < medium || clusterBytes % medium != 0 ||
        clusterBytes > kMaxClusterBytes || candidate.FileRecordBytes < medium ||
        candidate.FileRecordBytes % medium != 0 || candidate.FileRecordBytes > kMaxVolumeRecordBytes) {
        return false;
    }
    candidate.TotalSectors = totalSectors;
    if (totalSectors == 0) {
        candidate.TotalSectors = BootTotalSectors(sector) * candidate.BytesPerSector / medium;
    }
    candidate.SectorsPerCluster = static_cast<std::uint32_t>(clusterBytes) / medium;
    candidate.SectorsPerFileRecord = static_cast<std::uint8_t>(candidate.FileRecordBytes / medium);
    candidate.SectorsPerIndexBlock =
        static_cast<std::uint8_t>(std::max(1U, candidate.IndexBlockBytes / medium));
    candidate.BytesPerSector = static_cast<std::uint16_t>(medium);
    candidate.MftSector = start + candidate.MftCluster * candidate.SectorsPerCluster;
    return true;
}

} // namespace thntfs
