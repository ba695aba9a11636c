#include "partitions/ReadVolumes.h"

#include "partitions/BootSector.h"
#include "partitions/EncryptedVolume.h"
#include "partitions/ExamineVolumes.h"
#include "partitions/GptTable.h"
#include "partitions/LookAt.h"
#include "partitions/PartitionTable.h"
#include "partitions/TableHead.h"
#include "platform/system/Interrupt.h"

#include <algorithm>
#include <array>
#include <new>

namespace thntfs {

namespace {

constexpr std::size_t kMaxTableVolumes = 1024;
constexpr std::uint64_t kLastSectorsTried = 16;

/// The first bytes of a sector that may be a boot sector.
struct FirstBytes {
    std::array<std::uint8_t, kBootSectorBytes> Sector{};
    bool Readable = false;

    [[nodiscard]] bool IsNtfs() const { return IsNtfsBootSector(Sector); }
    // Any other file system that a partition of this type may hold ends its first sector so.
    [[nodiscard]] bool IsOtherSystem() const { return !IsNtfs() && U16At(Sector, 510) == 0xAA55; }
};

FirstBytes ReadFirstBytes(std::uint64_t sector) {
    FirstBytes first;
    first.Readable = sector < Engine.SourceDisk.TotalSectors && LookAt(first.Sector, sector);
    return first;
}

bool IsListed(std::uint64_t startSector) {
    const auto atStart = [startSector](const auto& volume) { return volume.StartSector == startSector; };
    return std::any_of(Engine.TableVolumes.begin(), Engine.TableVolumes.end(), atStart) ||
           std::any_of(Engine.SourceDisk.Partitions.begin(), Engine.SourceDisk.Partitions.end(), atStart);
}

/// The boot sector's copy in the last sector of a partition, counted from which the volume begins where the
/// partition does.
bool DecodeCopyAtEnd(std::uint64_t start, std::uint64_t sectors, PartitionCandidate& candidate) {
    const FirstBytes copy = ReadFirstBytes(start + sectors - 1);
    return sectors != 0 && copy.IsNtfs() && DecodeVolume(copy.Sector, start, sectors, candidate);
}

// ------------------------------------------------------------------ the GUID partition tables

TableVolumeState StateOf(const FirstBytes& first, const GptEntry& entry, PartitionCandidate& candidate) {
    if (first.IsNtfs() && DecodeVolume(first.Sector, entry.FirstSector, entry.Sectors, candidate)) {
        return TableVolumeState::Usable;
    }
    if (IsEncryptedBootSector(first.Sector)) {
        return TableVolumeState::Encrypted;
    }
    return first.Readable ? TableVolumeState::NoBootSector : TableVolumeState::Unreadable;
}

void AddGptEntry(const GptEntry& entry, VolumeSource source, bool listUnusable) {
    if (IsListed(entry.FirstSector)) {
        return;
    }
    PartitionCandidate candidate;
    const FirstBytes first = ReadFirstBytes(entry.FirstSector);
    const TableVolumeState state = StateOf(first, entry, candidate);
    PartitionCandidate copy;
    if (state == TableVolumeState::Usable || state == TableVolumeState::Encrypted ||
        (listUnusable && entry.Basic) || DecodeCopyAtEnd(entry.FirstSector, entry.Sectors, copy)) {
        Engine.TableVolumes.push_back({entry.FirstSector, entry.Sectors, state, source});
    }
    if (state == TableVolumeState::Usable) {
        AddCandidate(candidate, source);
    }
}

void AddGptEntries(const GptTable& table, VolumeSource source, bool listUnusable) {
    for (const GptEntry& entry : table.Entries) {
        if (Engine.TableVolumes.size() >= kMaxTableVolumes || WasInterrupted()) {
            return;
        }
        AddGptEntry(entry, source, listUnusable && table.Sound);
    }
}

// The backup of a table that is gone otherwise counts like it; beside a sound one, or on a disk that has a
// classic table by now, only volumes that are really there do.
void AddGptVolumes() {
    const bool noOtherTable = Engine.TableVolumes.empty();
    const GptTables tables = ReadGptTables();
    if (tables.First.Sound || !tables.Backup.Sound) {
        AddGptEntries(tables.First, VolumeSource::Gpt, true);
    }
    AddGptEntries(tables.Backup, VolumeSource::GptBackup, noOtherTable && !tables.First.Sound);
}

// ------------------------------------------------------------------ a medium that is a volume

// What a partition table would have in its last bytes is code in a boot sector.
void ForgetUnusableEntries() {
    std::erase_if(Engine.TableVolumes,
                  [](const TableVolume& entry) { return entry.State != TableVolumeState::Usable; });
}

// Without its first sector the volume is found by the copy in the last one, counted from which it begins with
// the medium.
bool DecodeWholeByCopy(PartitionCandidate& candidate) {
    const std::uint64_t total = Engine.SourceDisk.TotalSectors;
    for (std::uint64_t back = 1; back <= std::min(kLastSectorsTried, total); ++back) {
        const FirstBytes copy = ReadFirstBytes(total - back);
        if (copy.IsNtfs() && DecodeVolume(copy.Sector, 0, 0, candidate) &&
            candidate.TotalSectors == total - back) {
            return true;
        }
    }
    return false;
}

void AddWholeMedium() {
    const FirstBytes first = ReadFirstBytes(0);
    PartitionCandidate candidate;
    if (IsEncryptedBootSector(first.Sector)) {
        ForgetUnusableEntries();
        Engine.TableVolumes.push_back(
            {0, Engine.SourceDisk.TotalSectors, TableVolumeState::Encrypted, VolumeSource::WholeMedium});
    } else if (first.IsNtfs() && DecodeVolume(first.Sector, 0, 0, candidate)) {
        ForgetUnusableEntries();
        AddCandidate(candidate, VolumeSource::WholeMedium);
    } else if (DecodeWholeByCopy(candidate)) {
        AddCandidate(candidate, VolumeSource::WholeMedium);
    }
}

// ------------------------------------------------------------------ entries without a boot sector

void LookAgainAt(TableVolume& entry) {
    const FirstBytes first = ReadFirstBytes(entry.StartSector);
    if (IsEncryptedBootSector(first.Sector)) {
        entry.State = TableVolumeState::Encrypted;
        return;
    }
    PartitionCandidate candidate;
    if (DecodeCopyAtEnd(entry.StartSector, entry.TotalSectors, candidate) &&
        (!first.IsOtherSystem() || FindHeadOf(candidate))) {
        AddCandidate(candidate, entry.Source);
    }
}

void LookAgainAtUnusableEntries() {
    for (TableVolume& entry : Engine.TableVolumes) {
        const bool lost =
            entry.State == TableVolumeState::NoBootSector || entry.State == TableVolumeState::Unreadable;
        if (lost && !WasInterrupted()) {
            LookAgainAt(entry);
        }
    }
}

} // namespace

void AddCandidate(const PartitionCandidate& candidate, VolumeSource source) {
    Engine.SourceDisk.Partitions.push_back(candidate);
    Engine.VolumeFacts.resize(Engine.SourceDisk.Partitions.size());
    Engine.VolumeFacts.back().Source = source;
}

bool ReadVolumes() {
    ReadPartitionTable();
    VolumeFacts ofTable;
    ofTable.Source = VolumeSource::Mbr;
    Engine.VolumeFacts.assign(Engine.SourceDisk.Partitions.size(), ofTable);
    try {
        AddGptVolumes();
        AddWholeMedium();
        LookAgainAtUnusableEntries();
        ExamineVolumes([] { return !WasInterrupted(); });
    } catch (const std::bad_alloc&) {
    }
    return !Engine.SourceDisk.Partitions.empty();
}

} // namespace thntfs
