#pragma once

#include "engine/EngineState.h"
#include "platform/media/Medium.h"
#include "support/FaultyMedium.h"
#include "support/TestHost.h"
#include "support/VolumeBuilder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace thntfs::test {

/// The candidate that a volume's boot sector leads to.
inline PartitionCandidate CandidateOf(const VolumeGeometry& geometry) {
    PartitionCandidate candidate;
    candidate.StartSector = geometry.StartSector;
    candidate.TotalSectors = geometry.TotalSectors;
    candidate.MftCluster = geometry.MftCluster();
    candidate.MftMirrCluster = geometry.MirrorCluster;
    candidate.MftSector = geometry.SectorOf(geometry.MftCluster());
    candidate.ClusterBytes = geometry.ClusterBytes();
    candidate.FileRecordBytes = static_cast<std::uint16_t>(geometry.RecordBytes);
    candidate.IndexBlockBytes = geometry.IndexBlockBytes;
    candidate.BytesPerSector = static_cast<std::uint16_t>(geometry.SectorBytes);
    candidate.SectorsPerCluster = static_cast<std::uint8_t>(geometry.SectorsPerCluster);
    candidate.SectorsPerFileRecord = static_cast<std::uint8_t>(geometry.RecordBytes / geometry.SectorBytes);
    candidate.SectorsPerIndexBlock =
        static_cast<std::uint8_t>(geometry.IndexBlockBytes / geometry.SectorBytes);
    return candidate;
}

/// Replaces VolumeParams.MftExtents. A run without a start becomes an all-zero extent.
inline void SetTableRuns(const std::vector<Run>& runs) {
    Engine.VolumeParams.MftExtents.Clear();
    for (const Run& run : runs) {
        auto extent = std::make_unique<MftExtent>();
        extent->Clusters = run.Start ? static_cast<std::uint32_t>(run.Clusters) : 0;
        extent->StartCluster = run.Start.value_or(0);
        Engine.VolumeParams.MftExtents.Append(std::move(extent));
    }
}

/// The runs in a list of extents, an all-zero one as a run without a start.
inline std::vector<std::pair<std::uint32_t, std::uint64_t>> RunsIn(const ListHead<MftExtent>& extents) {
    std::vector<std::pair<std::uint32_t, std::uint64_t>> runs;
    for (const MftExtent* extent = extents.First(); extent != nullptr; extent = extent->Next.get()) {
        runs.emplace_back(extent->Clusters, extent->StartCluster);
    }
    return runs;
}

/// A file name attribute's value of a child of `parent`.
inline FileNameValue NameIn(std::uint32_t parent, std::u16string name,
                            std::uint8_t nameSpace = kNamespaceWin32) {
    return {.Parent = FileReference(parent), .Name = std::move(name), .Namespace = nameSpace};
}

/// Sectors of 512 bytes, sector N filled with bytes of the value N + 1.
inline ByteVector NumberedSectors(std::size_t sectors) {
    ByteVector bytes(sectors * 512);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i / 512 + 1);
    }
    return bytes;
}

/// A file's bytes; empty where there is none.
inline ByteVector ReadWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The engine with a host that records what it reports. Whatever a test leaves open is closed behind it.
class EngineFixture : public ::testing::Test {
protected:
    EngineFixture() { ResetEngineState(); }
    ~EngineFixture() override {
        ResetEngineState();
        Engine.ScanRunFlag = 0;
        Engine.PreviewActive = 0;
    }

    /// Opens a medium as SourceDisk behind one that fails by Plan.
    void OpenDisk(std::unique_ptr<Medium> medium, std::uint16_t sectorBytes = 512) {
        Plan->SectorBytes = sectorBytes;
        Engine.SourceDisk.BytesPerSector = sectorBytes;
        Engine.SourceDisk.TotalSectors = medium->SizeBytes() / sectorBytes;
        Engine.SourceDisk.MediaHandle = MakeFaultyMedium(std::move(medium), Plan);
    }

    /// Opens a builder's medium, which later changes to the builder reach too, and takes its volume into use.
    /// MftExtents get the runs of its table.
    void OpenVolume(const VolumeBuilder& volume) {
        const VolumeGeometry& geometry = volume.Geometry();
        OpenDisk(volume.MakeMedium(), static_cast<std::uint16_t>(geometry.SectorBytes));
        LoadVolumeParams(CandidateOf(geometry));
        SetTableRuns(geometry.MftRuns);
    }

    TestHost Reports;
    std::shared_ptr<FaultPlan> Plan = std::make_shared<FaultPlan>();
};

} // namespace thntfs::test
