#include "partitions/BootSectorRoute.h"

#include "engine/EngineState.h"
#include "engine/Host.h"
#include "partitions/BootSector.h"

namespace thntfs {

namespace {

// The copy of the boot sector at a volume's end fails here: counted from there the volume runs past the disk.
bool FitsOnMedium(ConstBytes bootSector, std::uint64_t sector) {
    const std::uint64_t diskSectors = Engine.SourceDisk.TotalSectors;
    const std::uint64_t total = BootTotalSectors(bootSector);
    return total <= diskSectors && sector + total <= diskSectors &&
           sector + BootMftCluster(bootSector) * BootSectorsPerCluster(bootSector) <= diskSectors;
}

} // namespace

void FollowBootSector(ConstBytes bootSector, std::uint64_t sector, SecondSight secondSight,
                      CandidateIndex& index) {
    if (!FitsOnMedium(bootSector, sector)) {
        return;
    }
    PartitionCandidate candidate;
    DecodeFoundBootSector(bootSector, sector, candidate);
    if (PartitionCandidate* known = index.FindSameVolume(candidate); known != nullptr) {
        if (secondSight == SecondSight::Mark) {
            known->EvidenceFlags |= kEvidenceSecondBootSector;
        }
        return;
    }
    if (index.Add(candidate)) {
        Host().PartitionFound(candidate.StartSector);
    }
}

} // namespace thntfs
