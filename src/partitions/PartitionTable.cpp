#include "partitions/PartitionTable.h"

#include "engine/EngineState.h"
#include "engine/SectorReader.h"
#include "partitions/BootSector.h"
#include "platform/system/Interrupt.h"

#include <array>
#include <new>
#include <set>
#include <vector>

namespace thntfs {

namespace {

constexpr std::size_t kTableBytes = 512;
constexpr std::size_t kMaxTables = 1024;
constexpr std::uint64_t kFirstEntryAt = 446;
constexpr std::uint64_t kSignatureAt = 510;
constexpr std::uint16_t kSignature = 0xAA55;
constexpr std::uint8_t kTypeEmpty = 0x00;
constexpr std::uint8_t kTypeVolume = 0x07;

struct TableEntry {
    std::uint8_t Type;
    std::uint32_t FirstSector;
    std::uint32_t SectorCount;
};

using TableBytes = std::array<std::uint8_t, kTableBytes>;

TableEntry EntryAt(const TableBytes& table, std::size_t index) {
    const std::uint64_t at = kFirstEntryAt + 16 * index;
    return {U8At(table, at + 4), U32At(table, at + 8), U32At(table, at + 12)};
}

bool IsLink(std::uint8_t type) { return type == 0x05 || type == 0x0F || type == 0x85; }

void AddVolume(std::uint64_t start, std::uint32_t sectorCount) {
    // A read that ends the walk leaves it as what couldn't be read.
    Engine.TableVolumes.push_back({start, sectorCount, TableVolumeState::Unreadable, VolumeSource::Mbr});
    std::vector<std::uint8_t> sector(
        std::max<std::size_t>(Engine.SourceDisk.BytesPerSector, kBootSectorBytes));
    const ReadOutcome outcome = ReadSectors(Bytes(sector).first(Engine.SourceDisk.BytesPerSector), start);
    if (!IsNtfsBootSector(sector)) {
        Engine.TableVolumes.back().State =
            outcome.Whole() ? TableVolumeState::NoBootSector : TableVolumeState::Unreadable;
        return;
    }
    PartitionCandidate& candidate = Engine.SourceDisk.Partitions.emplace_back();
    DecodeTableBootSector(sector, start, sectorCount, candidate);
    Engine.TableVolumes.back().State = TableVolumeState::Usable;
}

// The volumes of a table of the chain that can't be read are lost with all that follow. The first table
// stands for itself: without it no volume is known.
void NoteLostTable(std::uint64_t tableSector, const ReadOutcome& outcome) {
    if (tableSector != 0 && !outcome.Whole()) {
        Engine.TableVolumes.push_back({tableSector, 0, TableVolumeState::LostTable, VolumeSource::Mbr});
    }
}

// Takes the volumes of one table and gives the sector that its last link names, 0 where it has none.
std::uint64_t ReadTable(std::uint64_t tableSector, std::uint64_t extendedBase) {
    TableBytes table{};
    NoteLostTable(tableSector, ReadSectors(table, tableSector));
    if (U16At(table, kSignatureAt) != kSignature || EntryAt(table, 0).Type == kTypeEmpty) {
        return 0;
    }
    std::uint64_t nextTable = 0;
    for (std::size_t i = 0; i < 4 && !WasInterrupted(); ++i) {
        const TableEntry entry = EntryAt(table, i);
        if (entry.Type == kTypeVolume) {
            AddVolume(tableSector + entry.FirstSector, entry.SectorCount);
        } else if (IsLink(entry.Type)) {
            nextTable = entry.FirstSector + extendedBase;
        }
    }
    return nextTable;
}

void WalkTables() {
    std::set<std::uint64_t> seen;
    std::uint64_t extendedBase = 0;
    std::uint64_t table = 0;
    do {
        seen.insert(table);
        table = ReadTable(table, extendedBase);
        if (extendedBase == 0) {
            extendedBase = table;
        }
    } while (table != 0 && !WasInterrupted() && seen.count(table) == 0 && seen.size() < kMaxTables);
}

} // namespace

bool ReadPartitionTable() {
    Engine.SourceDisk.Partitions.clear();
    Engine.TableVolumes.clear();
    Engine.VolumeFacts.clear();
    Engine.SearchLimits = 0;
    try {
        WalkTables();
    } catch (const CUserException&) {
    } catch (const std::bad_alloc&) {
    }
    return !Engine.SourceDisk.Partitions.empty();
}

} // namespace thntfs
