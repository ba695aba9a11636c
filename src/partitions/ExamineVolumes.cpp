#include "partitions/ExamineVolumes.h"

#include "engine/Attribute.h"
#include "engine/EngineState.h"
#include "engine/LocateMft.h"
#include "engine/SectorReader.h"
#include "engine/TableMap.h"
#include "partitions/BootSector.h"
#include "partitions/CandidateIndex.h"
#include "partitions/TableHead.h"

#include <algorithm>
#include <new>

namespace thntfs {

namespace {

constexpr std::uint64_t kLabelRecord = 3;
constexpr std::uint32_t kTypeVolumeName = 0x60;
constexpr std::size_t kMaxLabelUnits = 128;
constexpr std::size_t kMaxExamined = 2 * CandidateIndex::kMaxCandidates;

std::u16string LabelIn(ConstBytes record) {
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() <= kTypeVolumeName; walk.Next()) {
        const Attribute attribute = walk.Current();
        if (attribute.Type() == kTypeVolumeName && attribute.NonResident() == 0) {
            const std::size_t units = attribute.Value().size() / 2;
            return UnitsAt(record, attribute.ValueStart(), std::min(units, kMaxLabelUnits));
        }
    }
    return {};
}

// The mirror holds the label's record too.
std::u16string ReadLabel(const PartitionCandidate& volume, const TableHead& head) {
    std::vector<std::uint8_t> record(volume.FileRecordBytes);
    const std::uint64_t mirror = volume.StartSector + volume.MftMirrCluster * volume.SectorsPerCluster +
                                 kLabelRecord * volume.FileRecordBytes / Engine.SourceDisk.BytesPerSector;
    for (const std::uint64_t sector : {SectorOfRecord(volume, head, kLabelRecord).value_or(mirror), mirror}) {
        if (ReadRecordOf(volume, sector, kLabelRecord, record)) {
            return LabelIn(record);
        }
    }
    return {};
}

void Examine(const PartitionCandidate& volume, VolumeFacts& facts) {
    facts.Examined = true;
    if (const auto head = FindHeadOf(volume)) {
        facts.Verified = true;
        facts.Records = head->TableBytes / head->RecordBytes;
        facts.Label = ReadLabel(volume, *head);
    }
}

// What the volume in work would be as a candidate.
PartitionCandidate VolumeInWork() {
    const VolumeParams& volume = Engine.VolumeParams;
    PartitionCandidate candidate;
    candidate.StartSector = volume.StartSector;
    candidate.TotalSectors = volume.TotalSectors;
    candidate.MftCluster = volume.MftCluster;
    candidate.MftMirrCluster = volume.MftMirrCluster;
    candidate.ClusterBytes = volume.ClusterBytes;
    candidate.SectorsPerCluster = volume.SectorsPerCluster;
    candidate.FileRecordBytes = static_cast<std::uint16_t>(volume.FileRecordBytes);
    return candidate;
}

// Where the volume begins stands the boot sector of another, with its table: it was formatted over this one.
void NoteOverlay() {
    const VolumeParams& volume = Engine.VolumeParams;
    std::vector<std::uint8_t> sector(
        std::max<std::size_t>(Engine.SourceDisk.BytesPerSector, kBootSectorBytes));
    ReadSectorsCleared(Bytes(sector).first(Engine.SourceDisk.BytesPerSector), volume.StartSector);
    PartitionCandidate other;
    if (IsNtfsBootSector(sector) && DecodeVolume(sector, volume.StartSector, 0, other) &&
        (other.ClusterBytes != volume.ClusterBytes || other.MftCluster != volume.MftCluster) &&
        HeadAtCluster(other, other.MftCluster)) {
        Engine.OverlaidBy = other;
    }
}

bool TakeTableAt(std::uint64_t sector) {
    VolumeParams& volume = Engine.VolumeParams;
    volume.MftSector = sector;
    const TableMap map = BuildTableMap();
    for (const MapRun& run : map.Runs.Runs()) {
        volume.MftExtents.push_back(run.Hole ? MftExtent()
                                             : MftExtent{static_cast<std::uint32_t>(run.Clusters), run.Lcn});
    }
    volume.MftRecordCount =
        static_cast<std::uint32_t>(map.Runs.EndVcn() * volume.ClusterBytes / volume.FileRecordBytes);
    Engine.TableCut = !map.Whole;
    Engine.Table = nullptr; // what was made out before is made out anew
    return !volume.MftExtents.empty();
}

} // namespace

void ExamineVolumes(const std::function<bool()>& mayGoOn) try {
    const std::vector<PartitionCandidate>& candidates = Engine.SourceDisk.Partitions;
    const std::size_t count = std::min(candidates.size(), kMaxExamined);
    Engine.VolumeFacts.resize(std::max(count, Engine.VolumeFacts.size()));
    for (std::size_t i = 0; i < count && mayGoOn(); ++i) {
        if (!Engine.VolumeFacts[i].Examined) {
            Examine(candidates[i], Engine.VolumeFacts[i]);
        }
    }
} catch (const std::bad_alloc&) {
}

std::u16string LabelOfVolumeInWork() {
    const std::vector<PartitionCandidate>& candidates = Engine.SourceDisk.Partitions;
    const PartitionCandidate volume = VolumeInWork();
    const auto same =
        std::find_if(candidates.begin(), candidates.end(), [&volume](const PartitionCandidate& candidate) {
            return candidate.StartSector == volume.StartSector && candidate.MftCluster == volume.MftCluster;
        });
    const auto place = static_cast<std::size_t>(same - candidates.begin());
    if (same != candidates.end() && place < Engine.VolumeFacts.size() && Engine.VolumeFacts[place].Examined) {
        return Engine.VolumeFacts[place].Label;
    }
    VolumeFacts facts;
    Examine(volume, facts);
    return facts.Label;
}

bool LocateTable() try {
    NoteOverlay();
    if (LocateMft()) {
        return true;
    }
    const PartitionCandidate volume = VolumeInWork();
    for (const std::uint64_t cluster : {volume.MftCluster, volume.MftMirrCluster}) {
        const auto head = cluster == 0 ? std::nullopt : HeadAtCluster(volume, cluster);
        if (head && TakeTableAt(volume.StartSector + cluster * volume.SectorsPerCluster)) {
            const std::uint64_t reach = Engine.VolumeParams.MftRecordCount * std::uint64_t{head->RecordBytes};
            Engine.TableBytes = std::min(head->TableBytes, reach);
            return true;
        }
    }
    return false;
} catch (const CUserException&) {
    return false;
} catch (const std::bad_alloc&) {
    return false;
}

} // namespace thntfs
