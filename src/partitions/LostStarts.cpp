#include "partitions/LostStarts.h"

#include "engine/Attribute.h"
#include "engine/AttributePieces.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "partitions/EncryptedVolume.h"
#include "partitions/ReadVolumes.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace thntfs {

namespace {

constexpr std::size_t kMaxLostVolumes = 1000;
constexpr std::uint64_t kBitmapRecord = 6;
constexpr std::uint64_t kBadClusterRecord = 8;
constexpr std::u16string_view kBadStream = u"$Bad";
constexpr std::uint64_t kMaxVolumeClusters = std::uint64_t{1} << 40U;
constexpr std::uint32_t kUsualIndexBlock = 4096;

// ------------------------------------------------------------------ the size of a volume

std::optional<std::uint64_t> ClustersByBadStream(ConstBytes record) {
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() <= kTypeData; walk.Next()) {
        const Attribute attribute = walk.Current();
        if (attribute.Type() == kTypeData && attribute.NonResident() != 0 &&
            AttributeName(record, attribute) == kBadStream) {
            return attribute.LastCluster() + 1;
        }
    }
    return std::nullopt;
}

std::optional<std::uint64_t> ClustersByBitmap(ConstBytes record) {
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() <= kTypeData; walk.Next()) {
        const Attribute attribute = walk.Current();
        if (attribute.Type() == kTypeData && attribute.NonResident() != 0 && !attribute.Named()) {
            return attribute.RealBytes() * 8;
        }
    }
    return std::nullopt;
}

using ClusterCount = std::optional<std::uint64_t> (*)(ConstBytes record);

std::optional<std::uint64_t> ClustersByRecord(const PartitionCandidate& volume, const TableHead& head,
                                              std::uint64_t number, ClusterCount count) {
    std::vector<std::uint8_t> record(volume.FileRecordBytes);
    const auto sector = SectorOfRecord(volume, head, number);
    const bool read = sector && ReadRecordOf(volume, *sector, number, record);
    const auto clusters = read ? count(record) : std::nullopt;
    return clusters && *clusters != 0 && *clusters <= kMaxVolumeClusters ? clusters : std::nullopt;
}

// Where no record tells, the volume is taken to reach to the medium's end.
std::uint64_t SectorsOfVolume(const PartitionCandidate& volume, const TableHead& head) {
    auto clusters = ClustersByRecord(volume, head, kBadClusterRecord, ClustersByBadStream);
    if (!clusters) {
        clusters = ClustersByRecord(volume, head, kBitmapRecord, ClustersByBitmap);
    }
    return clusters ? *clusters * volume.SectorsPerCluster
                    : Engine.SourceDisk.TotalSectors - volume.StartSector;
}

// ------------------------------------------------------------------ volumes from traces

// Where record 1 is lost the mirror's place isn't known.
bool IsSameVolume(const PartitionCandidate& known, const PartitionCandidate& found) {
    return known.StartSector == found.StartSector && known.MftCluster == found.MftCluster &&
           (known.MftMirrCluster == found.MftMirrCluster || found.MftMirrCluster == 0) &&
           known.ClusterBytes == found.ClusterBytes && known.SectorsPerCluster == found.SectorsPerCluster &&
           known.FileRecordBytes == found.FileRecordBytes;
}

bool IsListedLayout(const PartitionCandidate& volume) {
    const auto& candidates = Engine.SourceDisk.Partitions;
    return std::any_of(candidates.begin(), candidates.end(),
                       [&](const PartitionCandidate& known) { return IsSameVolume(known, volume); });
}

// A candidate of the same volume whose size can't be right doesn't count.
bool IsKnown(const PartitionCandidate& volume) {
    const auto& candidates = Engine.SourceDisk.Partitions;
    return std::any_of(candidates.begin(), candidates.end(), [&](const PartitionCandidate& known) {
        return IsSameVolume(known, volume) && FindHeadOf(known);
    });
}

void AddIfConfirmed(const PartitionCandidate& volume) {
    if (FindHeadOf(volume) && !IsKnown(volume)) {
        AddCandidate(volume, VolumeSource::Search);
    }
}

/// The volume of a boot sector that begins where it stands, or ends there.
void AddByBootSector(ConstBytes bootSector, std::uint64_t sector) {
    PartitionCandidate volume;
    if (!DecodeVolume(bootSector, sector, 0, volume)) {
        return;
    }
    volume.EvidenceFlags = kEvidenceBootSector;
    AddIfConfirmed(volume);
    const std::uint64_t start = sector - volume.TotalSectors;
    DecodeVolume(bootSector, start, 0, volume);
    volume.EvidenceFlags = kEvidenceSecondBootSector;
    AddIfConfirmed(volume);
    // Without its first records a table is lost to a scan along it, but not to one of the whole volume.
    if (!FindHeadOf(volume) && !IsListedLayout(volume) && LaterRecordsStand(volume)) {
        AddCandidate(volume, VolumeSource::Search);
    }
}

bool IsMeasured(const TableHead& head) {
    const std::uint32_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    return head.ClusterBytes >= sectorBytes && head.ClusterBytes % sectorBytes == 0 &&
           head.RecordBytes >= sectorBytes && head.RecordBytes % sectorBytes == 0;
}

PartitionCandidate VolumeOfHead(const TableHead& head) {
    const std::uint32_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    PartitionCandidate volume;
    volume.MftCluster = head.TableCluster;
    volume.MftMirrCluster = head.MirrorCluster;
    volume.ClusterBytes = head.ClusterBytes;
    volume.SectorsPerCluster = head.ClusterBytes / sectorBytes;
    volume.FileRecordBytes = static_cast<std::uint16_t>(head.RecordBytes);
    volume.SectorsPerFileRecord = static_cast<std::uint8_t>(head.RecordBytes / sectorBytes);
    volume.BytesPerSector = static_cast<std::uint16_t>(sectorBytes);
    volume.IndexBlockBytes = std::max(kUsualIndexBlock, sectorBytes);
    volume.SectorsPerIndexBlock = static_cast<std::uint8_t>(volume.IndexBlockBytes / sectorBytes);
    volume.EvidenceFlags = kEvidenceMftWithMirr;
    return volume;
}

/// The volume of first records that stand at a sector, which its cluster is.
void AddByHead(const TableHead& head, std::uint64_t sector, std::uint64_t cluster) {
    PartitionCandidate volume = VolumeOfHead(head);
    volume.StartSector = sector - cluster * volume.SectorsPerCluster;
    volume.MftSector = sector;
    volume.TotalSectors = SectorsOfVolume(volume, head);
    AddIfConfirmed(volume);
}

void AddByHead(const TableHead& head, std::uint64_t sector) {
    if (!IsMeasured(head)) {
        return;
    }
    AddByHead(head, sector, head.TableCluster);
    if (head.MirrorCluster != 0) {
        AddByHead(head, sector, head.MirrorCluster);
    }
}

} // namespace

void LostStarts::NoteBootSector(ConstBytes bootSector, std::uint64_t sector) {
    if (boots_.size() < kMaxTraces) {
        boots_.push_back({sector, {}});
        std::copy_n(bootSector.begin(), kBootSectorBytes, boots_.back().Bytes.begin());
    }
}

void LostStarts::NoteRecord(ConstBytes firstSector, std::uint64_t sector) {
    const std::uint32_t recordBytes = BytesAllocated(firstSector);
    if (heads_.size() >= kMaxTraces || !IsPossibleRecordSize(recordBytes) || !MayBeTableRecord(firstSector)) {
        return;
    }
    if (const auto head = ReadTableHead(sector, recordBytes)) {
        heads_.push_back({sector, *head});
    }
}

void LostStarts::NoteEncrypted(std::uint64_t sector) {
    if (encrypted_.size() < kMaxTraces) {
        encrypted_.insert(sector);
    }
}

void LostStarts::NoteSector(ConstBytes bytes, std::uint64_t sector) {
    if (IsNtfsBootSector(bytes)) {
        NoteBootSector(bytes.first(kBootSectorBytes), sector);
    } else if (U32At(bytes, 0) == kFileMagic) {
        NoteRecord(bytes, sector);
    }
    if (IsEncryptedBootSector(bytes)) {
        NoteEncrypted(sector);
    }
}

void LostStarts::AddVolumes(const std::function<bool()>& mayGoOn) const {
    const std::size_t most = Engine.SourceDisk.Partitions.size() + kMaxLostVolumes;
    const auto hasRoom = [&] { return mayGoOn() && Engine.SourceDisk.Partitions.size() < most; };
    for (const BootTrace& boot : boots_) {
        if (hasRoom()) {
            AddByBootSector(boot.Bytes, boot.Sector);
        }
    }
    for (const HeadTrace& trace : heads_) {
        if (hasRoom()) {
            AddByHead(trace.Head, trace.Sector);
        }
    }
    for (const std::uint64_t sector : encrypted_) {
        Engine.TableVolumes.push_back({sector, 0, TableVolumeState::Encrypted, VolumeSource::Search});
    }
}

} // namespace thntfs
