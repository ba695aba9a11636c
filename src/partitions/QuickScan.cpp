#include "engine/EngineState.h"
#include "engine/Host.h"
#include "engine/SectorReader.h"
#include "partitions/BootSector.h"
#include "partitions/BootSectorRoute.h"
#include "partitions/LostStarts.h"
#include "partitions/PartitionSearch.h"
#include "platform/media/Medium.h"

#include <algorithm>
#include <new>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint64_t kCylinderSectors = 16065; // 255 heads by 63 sectors
constexpr std::uint64_t kTrackSectors = 63;
constexpr std::uint64_t kHalfCylinder = 8032;
constexpr std::size_t kProbeSectors = 4;

std::uint64_t RoundToCylinder(std::uint64_t sector, std::uint64_t smallest) {
    if (sector <= kCylinderSectors) {
        return smallest;
    }
    const std::uint64_t rest = sector % kCylinderSectors;
    return rest > kHalfCylinder ? sector + (kCylinderSectors - rest) : sector - rest;
}

// Probes behind the end of the disk lose nothing.
void CountLoss(std::uint64_t sector, const ReadOutcome& outcome) {
    const bool bad = !outcome.BadSectors.empty() && outcome.BadSectors.front() == sector;
    Engine.Losses.Sectors += bad && sector < Engine.SourceDisk.TotalSectors ? 1 : 0;
}

void Probe(std::vector<std::uint8_t>& buffer, std::uint64_t sector, std::uint64_t endSector,
           CandidateIndex& index, LostStarts* traces) {
    Host().SearchPosition(sector, endSector);
    CountLoss(sector, ReadSectorsCleared(buffer, sector));
    const ConstBytes first = ConstBytes(buffer).first(kBootSectorBytes);
    if (IsNtfsBootSector(first)) {
        FollowBootSector(first, sector, SecondSight::Ignore, index);
    }
    for (std::size_t i = 0; traces != nullptr && i < kProbeSectors; ++i) {
        const std::size_t sectorBytes = buffer.size() / kProbeSectors;
        traces->NoteSector(ConstBytes(buffer).subspan(i * sectorBytes, sectorBytes), sector + i);
    }
}

} // namespace

std::uint32_t QuickScan(std::uint64_t firstSector, std::uint64_t endSector, LostStarts* traces) {
    std::uint64_t position = RoundToCylinder(firstSector, 0);
    const std::uint64_t end = RoundToCylinder(endSector, kCylinderSectors);
    Engine.Losses = ScanLosses();
    CandidateIndex index;
    std::vector<std::uint8_t> buffer(kProbeSectors *
                                     std::max<std::size_t>(Engine.SourceDisk.BytesPerSector, 512));
    if (Engine.SourceDisk.MediaHandle != nullptr) {
        Engine.SourceDisk.MediaHandle->ExpectScatteredReads(true);
    }
    try {
        while (position < end && JobMayGoOn()) {
            Probe(buffer, position, end, index, traces);
            if (!JobMayGoOn()) {
                break;
            }
            Probe(buffer, position + kTrackSectors, end, index, traces);
            position += kCylinderSectors;
        }
        Host().SearchPosition(std::min(position, end), end);
    } catch (const CUserException&) {
        // The user has seen the box. What was found so far stands.
    } catch (const std::bad_alloc&) {
    }
    if (Engine.SourceDisk.MediaHandle != nullptr) {
        Engine.SourceDisk.MediaHandle->ExpectScatteredReads(false);
    }
    return Engine.ScanRunFlag;
}

} // namespace thntfs
