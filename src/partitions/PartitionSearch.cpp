#include "partitions/PartitionSearch.h"

#include "engine/EngineState.h"
#include "engine/SectorReader.h"
#include "partitions/ExamineVolumes.h"
#include "partitions/LookAt.h"
#include "partitions/LostStarts.h"

#include <algorithm>
#include <new>
#include <vector>

namespace thntfs {

namespace {

// A partition's last sector, and in it the copy of the boot sector, lies in the medium's last cylinder.
constexpr std::uint64_t kEndSectors = 16384;
constexpr std::uint64_t kEndBatch = 128;
constexpr std::uint64_t kLookSectors = 16; // at least those of a look

void NoteEndOfMedium(LostStarts& traces) {
    const std::uint64_t total = Engine.SourceDisk.TotalSectors;
    const std::size_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    std::vector<std::uint8_t> batch(kEndBatch * sectorBytes);
    for (std::uint64_t at = total - std::min(total, kEndSectors); at < total && JobMayGoOn();
         at += kEndBatch) {
        const bool whole = TryReadSectors(batch, at);
        for (std::size_t i = 0; i < kEndBatch && at + i < total && JobMayGoOn(); ++i) {
            const Bytes sector = Bytes(batch).subspan(i * sectorBytes, sectorBytes);
            if (whole || LookAt(sector, at + i)) {
                traces.NoteSector(sector, at + i);
            }
        }
    }
}

// A look that failed is made once more by the road that tells of it, unless the search itself met the fault.
void TellFailedLook() try {
    if (Engine.UnreadLook && !Engine.Losses.Any()) {
        std::vector<std::uint8_t> place(kLookSectors * Engine.SourceDisk.BytesPerSector);
        Engine.Losses.Sectors += ReadSectorsCleared(place, *Engine.UnreadLook).BadSectors.size();
    }
} catch (const CUserException&) {
}

} // namespace

std::uint32_t RunPartitionSearch(SearchMethod method, std::uint64_t firstSector, std::uint64_t endSector,
                                 LostStarts* traces) {
    return method == SearchMethod::Thorough ? ThoroughScan(firstSector, endSector, traces)
                                            : QuickScan(firstSector, endSector, traces);
}

std::uint32_t SearchVolumes(SearchMethod method, std::uint64_t firstSector, std::uint64_t endSector) {
    LostStarts traces;
    RunPartitionSearch(method, firstSector, endSector, &traces);
    Engine.UnreadLook.reset();
    try {
        VolumeFacts found;
        found.Source = VolumeSource::Search;
        Engine.VolumeFacts.assign(Engine.SourceDisk.Partitions.size(), found);
        if (method == SearchMethod::Quick) {
            NoteEndOfMedium(traces);
        }
        traces.AddVolumes(JobMayGoOn);
        ExamineVolumes(JobMayGoOn);
    } catch (const std::bad_alloc&) {
    }
    TellFailedLook();
    return Engine.ScanRunFlag;
}

} // namespace thntfs
