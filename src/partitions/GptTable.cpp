#include "partitions/GptTable.h"

#include "engine/EngineState.h"
#include "engine/SectorReader.h"
#include "partitions/LookAt.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <zlib.h>

namespace thntfs {

namespace {

constexpr std::uint64_t kGptSignature = 0x5452415020494645; // "EFI PART"
constexpr std::uint64_t kGptHeaderBytes = 92;
constexpr std::uint64_t kHeaderSumAt = 16;
constexpr std::uint32_t kSmallestEntry = 128;
constexpr std::uint32_t kLargestEntry = 4096;
constexpr std::uint32_t kUsualEntries = 128;
constexpr std::uint32_t kMaxArrayBytes = 1U << 20U;
constexpr std::uint64_t kEndBytes = 128U << 10U; // of the medium, in which the backup is looked for
constexpr std::uint64_t kUnits[] = {512, 4096};  // bytes of a sector that tables are found to count by

// Of the type "basic data partition", as its GUID is stored.
constexpr std::uint64_t kBasicDataLow = 0x4433B9E5EBD0A0A2;
constexpr std::uint64_t kBasicDataHigh = 0xC79926B7B668C087;

constexpr std::uint8_t kTypeProtective = 0xEE;

/// All places are in units, the sectors that the table counts by.
struct GptHeader {
    std::uint64_t UnitBytes = 0;
    std::uint64_t Other = 0; ///< the header of the other table
    std::uint64_t ArrayAt = 0;
    std::uint32_t Entries = 0;
    std::uint32_t EntryBytes = 0;
    std::uint32_t ArraySum = 0;
    bool Sound = false;
};

std::uint32_t SumOf(ConstBytes bytes) {
    return static_cast<std::uint32_t>(::crc32_z(0, bytes.data(), bytes.size()));
}

// Bytes at a byte offset, zeros where they can't be read.
std::vector<std::uint8_t> BytesAt(std::uint64_t offset, std::uint64_t length) {
    const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    std::vector<std::uint8_t> bytes(length);
    if (offset >= MediumBytes() || LookAt(bytes, offset / sectorBytes)) {
        return bytes;
    }
    for (std::uint64_t at = 0; at < length; at += sectorBytes) {
        LookAt(Bytes(bytes).subspan(at, std::min(sectorBytes, length - at)), (offset + at) / sectorBytes);
    }
    return bytes;
}

bool HeaderSumIsRight(ConstBytes sector) {
    const std::uint32_t bytes = U32At(sector, 12);
    if (bytes < kGptHeaderBytes || bytes > sector.size()) {
        return false;
    }
    std::vector<std::uint8_t> header(sector.begin(), sector.begin() + bytes);
    PutNumber<std::uint32_t>(header, kHeaderSumAt, 0);
    return SumOf(header) == U32At(sector, kHeaderSumAt);
}

// The header in a unit-sized piece of the medium, if it says that it stands there.
std::optional<GptHeader> HeaderIn(ConstBytes piece, std::uint64_t offset, std::uint64_t unitBytes) {
    if (U64At(piece, 0) != kGptSignature || U64At(piece, 24) != offset / unitBytes) {
        return std::nullopt;
    }
    GptHeader header;
    header.UnitBytes = unitBytes;
    header.Other = U64At(piece, 32);
    header.ArrayAt = U64At(piece, 72);
    header.Entries = U32At(piece, 80);
    header.EntryBytes = U32At(piece, 84);
    header.ArraySum = U32At(piece, 88);
    header.Sound = HeaderSumIsRight(piece);
    return header;
}

// A unit holds whole sectors of the medium.
std::vector<std::uint64_t> PossibleUnits() {
    const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    std::vector<std::uint64_t> units{sectorBytes};
    for (const std::uint64_t unit : kUnits) {
        if (unit > sectorBytes) {
            units.push_back(unit);
        }
    }
    return units;
}

std::optional<GptHeader> HeaderAt(std::uint64_t unit, std::uint64_t unitBytes) {
    const bool within = unit < MediumBytes() / unitBytes;
    return within ? HeaderIn(BytesAt(unit * unitBytes, unitBytes), unit * unitBytes, unitBytes)
                  : std::nullopt;
}

std::optional<GptHeader> FindFirstHeader() {
    for (const std::uint64_t unitBytes : PossibleUnits()) {
        if (auto header = HeaderAt(1, unitBytes)) {
            return header;
        }
    }
    return std::nullopt;
}

/// Sectors in the protective partition of sector 0; none without one.
std::optional<std::uint32_t> ProtectedSectors() {
    const std::vector<std::uint8_t> table = BytesAt(0, Engine.SourceDisk.BytesPerSector);
    for (std::uint64_t entry = 446; entry < 510; entry += 16) {
        if (U16At(table, 510) == 0xAA55 && U8At(table, entry + 4) == kTypeProtective) {
            return U32At(table, entry + 12);
        }
    }
    return std::nullopt;
}

// The last header in the last pieces of the medium. Its own place tells the unit.
std::optional<GptHeader> FindHeaderAtEnd() {
    const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    const std::uint64_t size = MediumBytes() / sectorBytes * sectorBytes;
    const std::uint64_t begin = size - std::min(size, kEndBytes);
    const std::vector<std::uint8_t> end = BytesAt(begin, size - begin);
    for (std::uint64_t at = end.size(); at >= sectorBytes; at -= sectorBytes) {
        const std::uint64_t offset = begin + at - sectorBytes;
        for (const std::uint64_t unitBytes : PossibleUnits()) {
            const ConstBytes piece = Part(end, offset - begin, unitBytes);
            if (offset % unitBytes != 0 || U64At(piece, 0) != kGptSignature) {
                continue;
            }
            if (auto header = HeaderIn(piece, offset, unitBytes); header && offset != unitBytes) {
                return header;
            }
        }
    }
    return std::nullopt;
}

std::optional<GptHeader> FindBackupHeader(const std::optional<GptHeader>& first) {
    if (first) {
        if (auto header = first->Other > 1 ? HeaderAt(first->Other, first->UnitBytes) : std::nullopt) {
            return header;
        }
    }
    if (const auto sectors = ProtectedSectors(); sectors && *sectors > 1) {
        for (const std::uint64_t unitBytes : PossibleUnits()) {
            if (auto header = HeaderAt(*sectors, unitBytes)) {
                return header;
            }
        }
    }
    return FindHeaderAtEnd();
}

bool IsPossibleHeader(const GptHeader& header) {
    return header.EntryBytes >= kSmallestEntry && header.EntryBytes <= kLargestEntry &&
           header.EntryBytes % 8 == 0 && header.ArrayAt > 0 &&
           header.ArrayAt < MediumBytes() / header.UnitBytes;
}

void TakeEntry(ConstBytes stored, std::uint64_t sectorsOfUnit, GptTable& table) {
    const std::uint64_t first = U64At(stored, 32);
    const std::uint64_t last = U64At(stored, 40);
    const bool used = U64At(stored, 0) != 0 || U64At(stored, 8) != 0;
    // A disk that was cut off may lack the partition's end.
    const std::uint64_t units = Engine.SourceDisk.TotalSectors / sectorsOfUnit;
    if (!used || first == 0 || first >= units || last < first || last >= ~std::uint64_t{0} / sectorsOfUnit) {
        return;
    }
    const bool basic = U64At(stored, 0) == kBasicDataLow && U64At(stored, 8) == kBasicDataHigh;
    table.Entries.push_back({first * sectorsOfUnit, (last - first + 1) * sectorsOfUnit, basic});
}

GptTable ReadEntries(const GptHeader& header) {
    GptTable table;
    if (!IsPossibleHeader(header)) {
        return table;
    }
    const std::uint64_t whole = std::uint64_t{header.Entries} * header.EntryBytes;
    const std::uint64_t length = std::min<std::uint64_t>(whole, kMaxArrayBytes);
    const std::uint64_t offset = header.ArrayAt * header.UnitBytes;
    const std::vector<std::uint8_t> array = BytesAt(offset, std::min(length, MediumBytes() - offset));
    table.Sound = header.Sound && whole == array.size() && SumOf(array) == header.ArraySum;
    for (std::uint64_t at = 0; at + header.EntryBytes <= array.size(); at += header.EntryBytes) {
        TakeEntry(ConstBytes(array).subspan(at, header.EntryBytes),
                  header.UnitBytes / Engine.SourceDisk.BytesPerSector, table);
    }
    return table;
}

// Where both headers are lost their entries stand behind the first and in front of the second all the same.
// Anything else may stand there too: the type must be that of a data volume.
GptTable ReadEntriesWithoutHeader() {
    GptTable table;
    for (const std::uint64_t unitBytes : PossibleUnits()) {
        GptHeader usual;
        usual.UnitBytes = unitBytes;
        usual.Entries = kUsualEntries;
        usual.EntryBytes = kSmallestEntry;
        const std::uint64_t arrayUnits = std::uint64_t{kUsualEntries} * kSmallestEntry / unitBytes;
        for (const std::uint64_t place : {std::uint64_t{2}, MediumBytes() / unitBytes - 1 - arrayUnits}) {
            usual.ArrayAt = place;
            const GptTable found = ReadEntries(usual);
            std::copy_if(found.Entries.begin(), found.Entries.end(), std::back_inserter(table.Entries),
                         [](const GptEntry& entry) { return entry.Basic; });
        }
    }
    return table;
}

} // namespace

GptTables ReadGptTables() {
    GptTables tables;
    const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    if (sectorBytes < kUnits[0] || MediumBytes() < sectorBytes) {
        return tables;
    }
    const auto first = FindFirstHeader();
    const auto backup = FindBackupHeader(first);
    if (backup) {
        tables.Backup = ReadEntries(*backup);
    }
    if (first) {
        tables.First = ReadEntries(*first);
    } else if (!tables.Backup.Sound && (Engine.TableVolumes.empty() || ProtectedSectors())) {
        tables.First = ReadEntriesWithoutHeader();
    }
    return tables;
}

} // namespace thntfs
