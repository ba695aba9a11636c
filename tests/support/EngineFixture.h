#pragma once

#include "engine/EngineState.h"
#include "support/FaultyMedium.h"
#include "support/TestHost.h"
#include "support/VolumeBuilder.h"

#include <gtest/gtest.h>

namespace thntfs::test {

/// The candidate that a volume's boot sector leads to.
PartitionCandidate CandidateOf(const VolumeGeometry& geometry);

/// Replaces VolumeParams.MftExtents. A run without a start becomes an all-zero extent.
void SetTableRuns(const std::vector<Run>& runs);

/// The runs in a list of extents, an all-zero one as a run without a start.
std::vector<std::pair<std::uint32_t, std::uint64_t>> RunsIn(const std::vector<MftExtent>& extents);

/// A file name attribute's value of a child of `parent`.
FileNameValue NameIn(std::uint32_t parent, std::u16string name, std::uint8_t nameSpace = kNamespaceWin32);

/// Sectors of 512 bytes, sector N filled with bytes of the value N + 1.
ByteVector NumberedSectors(std::size_t sectors);

/// A file's bytes; empty where there is none.
ByteVector ReadFileBytes(const std::string& path);

/// The engine with a host that records what it reports. Whatever a test leaves open is closed behind it.
class EngineFixture : public ::testing::Test {
protected:
    EngineFixture();
    ~EngineFixture() override;

    /// Opens bytes, which the test may share, as SourceDisk behind a medium that fails by Plan.
    /// `deviceSectorBytes` as for MakeMemoryMedium.
    void OpenDisk(ByteVector bytes, std::uint16_t sectorBytes = 512);
    void OpenDisk(std::shared_ptr<ByteVector> bytes, std::uint16_t sectorBytes = 512,
                  std::uint32_t deviceSectorBytes = 0);
    static void CloseDisk();

    /// Opens a builder's medium, which later changes to the builder reach too, and takes its volume into use.
    /// MftExtents get the runs of its table.
    void OpenVolume(const VolumeBuilder& volume);

    TestHost Reports;
    std::shared_ptr<FaultPlan> Plan = std::make_shared<FaultPlan>();
};

} // namespace thntfs::test
