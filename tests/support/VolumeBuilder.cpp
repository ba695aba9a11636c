#include "support/VolumeBuilder.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace thntfs::test {

namespace {

constexpr std::uint32_t kRootNumber = 5;
constexpr std::uint32_t kMirroredRecords = 4;

std::uint64_t ClustersFor(std::uint64_t bytes, std::uint32_t clusterBytes) {
    return (bytes + clusterBytes - 1) / clusterBytes;
}

FileNameValue MetafileName(std::u16string name) {
    return {.Name = std::move(name), .Namespace = kNamespaceBoth, .AttributeBits = 6};
}

} // namespace

VolumeBuilder::VolumeBuilder(VolumeGeometry geometry)
    : geometry_(std::move(geometry))
    , image_(std::make_shared<ByteVector>(geometry_.MediumSectors() * geometry_.SectorBytes)) {
    for (const Run& run : geometry_.MftRuns) {
        nextCluster_ = std::max(nextCluster_, run.Start.value() + run.Clusters);
    }
    WriteDiskStructures();
    WriteEmptyRecords();
    WriteMetafiles();
}

// As drivers do, all over the table.
void VolumeBuilder::WriteEmptyRecords() {
    std::uint64_t bytes = 0;
    for (const Run& run : geometry_.MftRuns) {
        bytes += run.Clusters * geometry_.ClusterBytes();
    }
    for (std::uint32_t number = 0; number < bytes / geometry_.RecordBytes; ++number) {
        PlaceRecord(NewRecord(number).SetInUse(false));
    }
}

void VolumeBuilder::WriteDiskStructures() {
    if (geometry_.StartSector != 0) {
        PutSectors(0, EncodePartitionTable({{0x07, static_cast<std::uint32_t>(geometry_.StartSector),
                                             static_cast<std::uint32_t>(geometry_.TotalSectors + 1)}}));
    }
    const ByteVector boot = EncodeBootSector(BootFieldsOf(geometry_));
    PutSectors(geometry_.StartSector, boot);
    PutSectors(geometry_.StartSector + geometry_.TotalSectors, boot);
}

void VolumeBuilder::WriteMetafiles() {
    const std::uint64_t mirrorBytes = std::uint64_t{kMirroredRecords} * geometry_.RecordBytes;
    const std::uint64_t mirrorClusters = ClustersFor(mirrorBytes, geometry_.ClusterBytes());
    PlaceRecord(NewRecord(0)
                    .AddStandardInformation(EqualTimes(), 6)
                    .AddFileName(MetafileName(u"$MFT"))
                    .AddData({.Runs = geometry_.MftRuns})
                    .AddResident(kBitmap, ByteVector(8, 0xFF)));
    PlaceRecord(NewRecord(1)
                    .AddStandardInformation(EqualTimes(), 6)
                    .AddFileName(MetafileName(u"$MFTMirr"))
                    .AddData({.Runs = {{mirrorClusters, geometry_.MirrorCluster}}, .RealSize = mirrorBytes}));
    AddFolder({.Number = kRootNumber, .Parent = kRootNumber, .Name = u"."});
}

void VolumeBuilder::PlaceRecord(const RecordBuilder& record) {
    PlaceRecord(record.Number(), record.Finish());
}

void VolumeBuilder::PlaceRecord(std::uint32_t number, ConstBytes record) {
    for (std::size_t at = 0; at < record.size(); at += geometry_.SectorBytes) {
        const std::uint64_t offset = std::uint64_t{number} * geometry_.RecordBytes + at;
        PutSectors(SectorInTable(offset), record.subspan(at, geometry_.SectorBytes));
    }
    if (number < kMirroredRecords) {
        const std::uint64_t recordSectors = geometry_.RecordBytes / geometry_.SectorBytes;
        PutSectors(geometry_.SectorOf(geometry_.MirrorCluster) + number * recordSectors, record);
    }
}

std::uint64_t VolumeBuilder::RecordSector(std::uint32_t number) const {
    return SectorInTable(std::uint64_t{number} * geometry_.RecordBytes);
}

std::uint64_t VolumeBuilder::SectorInTable(std::uint64_t left) const {
    for (const Run& run : geometry_.MftRuns) {
        const std::uint64_t runBytes = run.Clusters * geometry_.ClusterBytes();
        if (left < runBytes) {
            return geometry_.SectorOf(run.Start.value()) + left / geometry_.SectorBytes;
        }
        left -= runBytes;
    }
    throw std::out_of_range("no run of the table holds the record");
}

std::uint64_t VolumeBuilder::AllocateClusters(std::uint64_t count) {
    const std::uint64_t mirrorEnd =
        geometry_.MirrorCluster +
        ClustersFor(std::uint64_t{kMirroredRecords} * geometry_.RecordBytes, geometry_.ClusterBytes());
    if (nextCluster_ < mirrorEnd && nextCluster_ + count > geometry_.MirrorCluster) {
        nextCluster_ = mirrorEnd;
    }
    return std::exchange(nextCluster_, nextCluster_ + count);
}

void VolumeBuilder::PutClusters(std::uint64_t cluster, ConstBytes data) {
    PutSectors(geometry_.SectorOf(cluster), data);
}

void VolumeBuilder::PutSectors(std::uint64_t sector, ConstBytes data) {
    const std::uint64_t offset = sector * geometry_.SectorBytes;
    if (offset > image_->size() || image_->size() - offset < data.size()) {
        throw std::out_of_range("beyond the end of the medium");
    }
    std::copy(data.begin(), data.end(), image_->begin() + static_cast<std::ptrdiff_t>(offset));
}

void VolumeBuilder::AddFile(const FileSpec& file) {
    const FileNameValue name = {.Parent = FileReference(file.Parent),
                                .Name = file.Name,
                                .AttributeBits = file.AttributeBits,
                                .Times = file.Times,
                                .RealSize = file.Content.size()};
    RecordBuilder record = NewRecord(file.Number);
    record.SetInUse(file.Live).AddStandardInformation(file.Times, file.AttributeBits).AddFileName(name);
    if (file.InClusters) {
        const std::uint64_t count = ClustersFor(file.Content.size(), geometry_.ClusterBytes());
        const std::uint64_t cluster = AllocateClusters(count);
        PutClusters(cluster, file.Content);
        record.AddData({.Runs = {{count, cluster}}, .RealSize = file.Content.size()});
    } else {
        record.AddData(ConstBytes(file.Content));
    }
    PlaceRecord(record);
}

void VolumeBuilder::AddFolder(const FileSpec& folder) {
    PlaceRecord(NewRecord(folder.Number)
                    .SetInUse(folder.Live)
                    .SetFolder(true)
                    .AddStandardInformation(folder.Times, 0)
                    .AddFileName({.Parent = FileReference(folder.Parent),
                                  .Name = folder.Name,
                                  .AttributeBits = kFolderBit,
                                  .Times = folder.Times})
                    .AddIndexRoot({}));
}

} // namespace thntfs::test
