#pragma once

#include "BenchVolume.h"

namespace thntfs::bench {

// Fixed clusters of the metafiles, before the table.
inline constexpr std::uint64_t kMirrorCluster = 2;
inline constexpr std::uint64_t kAttrDefCluster = 3;
inline constexpr std::uint64_t kUpCaseCluster = 4;
inline constexpr std::uint64_t kUpCaseClusters = 32;
inline constexpr std::uint64_t kLogCluster = 36;
inline constexpr std::uint64_t kLogClusters = 512;
inline constexpr std::uint64_t kTableBitmapCluster = 548;

/// What the metafiles say of the rest of the volume.
struct MetafilePlan {
    test::VolumeGeometry Geometry;
    std::uint32_t Records = 0;             ///< in the table
    std::uint64_t TableBitmapClusters = 0; ///< from kTableBitmapCluster on
    std::uint64_t VolumeBitmapCluster = 0;
    std::uint64_t VolumeBitmapBytes = 0;
    std::vector<SpecialFile> RootFiles;
};

/// Records 0 to 23 of the table, 1024 bytes each, one behind the other.
test::ByteVector MakeMetafileRecords(const MetafilePlan& plan);

/// Writes the content of the metafiles, the mirror's records included.
void WriteMetafileContent(const SparseImage& image, const MetafilePlan& plan, ConstBytes records);

} // namespace thntfs::bench
