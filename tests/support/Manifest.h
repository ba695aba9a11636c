#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace thntfs::test {

/// One file or folder that was ever made on a volume.
struct ManifestRow {
    std::string Path; ///< from the volume's root, UTF-8
    bool Live = false;
    bool Folder = false;
    std::uint64_t Size = 0; ///< bytes
    std::string Sha256;     ///< of the unnamed data with holes as zeros
    std::set<std::string> Notes;

    [[nodiscard]] bool Has(const std::string& note) const { return Notes.contains(note); }
};

/// A partition as it lies on its image.
struct LayoutRow {
    unsigned Number = 0;           ///< from 1
    std::uint64_t StartSector = 0; ///< of the disk
    std::uint32_t SectorSize = 0;  ///< of the disk, bytes
    std::uint32_t BytesPerSector = 0;
    std::uint32_t SectorsPerCluster = 0;
    std::uint32_t RecordBytes = 0;
    std::uint32_t IndexBytes = 0;
    std::uint64_t EntrySectors = 0;
    std::uint64_t MftCluster = 0;
    std::uint64_t MirrorCluster = 0;
    std::string Serial; ///< 16 hex digits

    [[nodiscard]] std::uint64_t ClusterBytes() const {
        return std::uint64_t{BytesPerSector} * SectorsPerCluster;
    }
    /// Place of a cluster in the image, in bytes.
    [[nodiscard]] std::uint64_t PlaceOf(std::uint64_t cluster) const {
        return StartSector * SectorSize + cluster * ClusterBytes();
    }
};

/// An unpacked image of tests/volumes.
struct PackedImage {
    std::string Name;
    std::string Path;
    std::vector<LayoutRow> Partitions;

    /// The rows of the partition with this number, from 1.
    [[nodiscard]] std::vector<ManifestRow> Manifest(unsigned number) const;
};

/// The packed image with a name; throws std::runtime_error where there is none.
PackedImage PackedImageNamed(const std::string& name);

/// All of them by name.
std::vector<PackedImage> PackedImages();

} // namespace thntfs::test
