#pragma once

#include "support/VolumeBuilderMedium.h"
#include "support/VolumeBuilderRecord.h"

namespace thntfs::test {

/// A plain file or folder. Without clusters its bytes are resident.
struct FileSpec {
    std::uint32_t Number = 0;
    std::uint32_t Parent = 5;
    std::u16string Name;
    ByteVector Content = {};
    bool InClusters = false; ///< put the content into fresh clusters, in one run
    bool Live = true;
    FileTimes Times = EqualTimes();
    std::uint32_t AttributeBits = kArchiveBit;
};

/// Lays out an NTFS volume on a medium in memory. The constructor writes a partition table with the one
/// volume, the boot sector and its backup, empty records all over the table, $MFT, $MFTMirr, the root folder
/// and the mirror's copies of the first four records. Everything is bytes at once: each later call writes
/// over what stands there.
class VolumeBuilder {
public:
    explicit VolumeBuilder(VolumeGeometry geometry = {});

    [[nodiscard]] const VolumeGeometry& Geometry() const { return geometry_; }
    /// A builder for record `number` with this volume's measures.
    [[nodiscard]] RecordBuilder NewRecord(std::uint32_t number, RecordForm form = RecordForm::Newer) const {
        return RecordBuilder(geometry_, number, form);
    }
    [[nodiscard]] IndexBlockBuilder NewIndexBlock() const { return IndexBlockBuilder(geometry_); }

    /// Puts a record into its place in the table, across the borders of its runs, and into the mirror if its
    /// number is below 4.
    void PlaceRecord(const RecordBuilder& record);
    void PlaceRecord(std::uint32_t number, ConstBytes record);
    /// Absolute sector in which a record begins by the table's runs. A number that no run holds throws
    /// std::out_of_range.
    [[nodiscard]] std::uint64_t RecordSector(std::uint32_t number) const;

    /// Takes clusters that nothing else uses, in one run, and gives the first.
    std::uint64_t AllocateClusters(std::uint64_t count);
    void PutClusters(std::uint64_t cluster, ConstBytes data);
    /// Bytes at an absolute sector. What reaches beyond the medium throws std::out_of_range.
    void PutSectors(std::uint64_t sector, ConstBytes data);

    void AddFile(const FileSpec& file);
    /// With an empty index: who it holds, each child says. It has no content.
    void AddFolder(const FileSpec& folder);

    /// Direct access to the medium's bytes.
    [[nodiscard]] ByteVector& Image() { return *image_; }
    /// The same bytes to lay a medium over, which later changes reach too.
    [[nodiscard]] std::shared_ptr<ByteVector> SharedImage() const { return image_; }
    void WriteTo(const std::string& path) const { WriteFileBytes(path, *image_); }

private:
    /// Absolute sector of a byte of the table.
    [[nodiscard]] std::uint64_t SectorInTable(std::uint64_t left) const;
    void WriteDiskStructures();
    void WriteEmptyRecords();
    void WriteMetafiles();

    VolumeGeometry geometry_;
    std::shared_ptr<ByteVector> image_;
    std::uint64_t nextCluster_ = 0;
};

} // namespace thntfs::test
