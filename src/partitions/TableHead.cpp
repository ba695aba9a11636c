#include "partitions/TableHead.h"

#include "engine/AttributePieces.h"
#include "engine/ClusterSize.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/SectorReader.h"
#include "partitions/LookAt.h"

#include <algorithm>
#include <bit>
#include <string_view>

namespace thntfs {

namespace {

constexpr std::u16string_view kTableName = u"$MFT";
constexpr std::u16string_view kMirrorName = u"$MFTMirr";
constexpr std::uint32_t kSmallestRecord = 256;
constexpr std::uint32_t kLargestRecord = 8192;
constexpr std::uint64_t kLeastMirrored = 4; // records
constexpr std::uint64_t kLaterRecords = 28;
constexpr std::size_t kMaxRunsTried = 8;
constexpr std::uint64_t kRecordsBehind = 3; // of which one must show that the table goes on

bool IsNamed(ConstBytes record, const Attribute& fileName, std::u16string_view name) {
    const std::uint64_t value = fileName.ValueStart();
    return U8At(record, value + 64) == name.size() && UnitsAt(record, value + 66, name.size()) == name;
}

/// What is looked for in record 0 or 1.
struct HeadRecord {
    bool Named = false; ///< it has the name
    bool OtherName = false;
    bool Listed = false; ///< it has an attribute list, so further pieces stand elsewhere
    std::optional<Attribute> Data;
};

HeadRecord LookAtRecord(ConstBytes record, std::u16string_view name) {
    HeadRecord found;
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() <= kTypeData; walk.Next()) {
        const Attribute attribute = walk.Current();
        if (attribute.Type() == kTypeFileName) {
            const bool named = IsNamed(record, attribute, name);
            found.Named = found.Named || named;
            found.OtherName = found.OtherName || !named;
        } else if (attribute.Type() == kTypeAttributeList) {
            found.Listed = true;
        } else if (attribute.Type() == kTypeData && !attribute.Named() && attribute.NonResident() != 0 &&
                   attribute.FirstCluster() == 0) {
            found.Data = attribute;
        }
    }
    return found;
}

// A driver that has filled record 0 with runs may have moved its name to another record.
bool IsWanted(const HeadRecord& found, ConstBytes record, std::uint64_t number) {
    const bool nameElsewhere = found.Listed && !found.OtherName && number == 0;
    return found.Data && (found.Named || nameElsewhere) && MayHaveNumber(record, number) &&
           BaseReference(record) == 0;
}

// A cluster's size follows from what the only piece of an attribute takes and the clusters that it counts.
std::uint32_t ShownClusterBytes(const HeadRecord& found) {
    const std::uint64_t clusters = found.Data->LastCluster() + 1;
    const std::uint64_t bytes = clusters == 0 ? 0 : found.Data->AllocatedBytes() / clusters;
    const bool possible = std::has_single_bit(bytes) && bytes >= kSmallestRecord && bytes <= kMaxClusterBytes;
    return possible && !found.Listed ? static_cast<std::uint32_t>(bytes) : 0;
}

bool TakeRecord0(ConstBytes record, TableHead& head) {
    const HeadRecord found = LookAtRecord(record, kTableName);
    if (!IsWanted(found, record, 0)) {
        return false;
    }
    head.Runs.Add(RunListOf(record, *found.Data), 0);
    const auto& runs = head.Runs.Runs();
    if (runs.empty() || runs.front().Vcn != 0 || runs.front().Hole) {
        return false;
    }
    head.TableCluster = runs.front().Lcn;
    head.TableBytes = found.Data->RealBytes();
    head.ClusterBytes = ShownClusterBytes(found);
    return true;
}

void TakeRecord1(ConstBytes record, TableHead& head) {
    const HeadRecord found = LookAtRecord(record, kMirrorName);
    RunMap runs;
    if (!IsWanted(found, record, 1) || !runs.Add(RunListOf(record, *found.Data), 0) || runs.Runs().empty() ||
        runs.Runs().front().Hole) {
        return;
    }
    head.MirrorCluster = runs.Runs().front().Lcn;
    head.MirrorBytes = found.Data->RealBytes();
    if (const std::uint32_t clusterBytes = ShownClusterBytes(found); clusterBytes != 0) {
        head.ClusterBytes = clusterBytes;
    }
}

// Records from a sector on, those that can't be read as zeros.
std::vector<std::uint8_t> ReadRecords(std::uint64_t sector, std::uint32_t recordBytes, std::uint64_t count) {
    const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    std::vector<std::uint8_t> records(recordBytes * count);
    if (sectorBytes == 0 || TryReadSectors(records, sector)) {
        return records;
    }
    std::fill(records.begin(), records.end(), std::uint8_t{0});
    for (std::uint64_t i = 0; recordBytes % sectorBytes == 0 && i < count; ++i) {
        LookAt(Bytes(records).subspan(recordBytes * i, recordBytes), sector + recordBytes * i / sectorBytes);
    }
    return records;
}

bool CheckRecord(Bytes record) {
    return CheckFileRecord(record, static_cast<std::uint32_t>(record.size()),
                           Engine.SourceDisk.BytesPerSector);
}

std::uint64_t SectorIn(const PartitionCandidate& volume, std::uint64_t cluster) {
    return volume.StartSector + cluster * volume.SectorsPerCluster;
}

// Whether one of some records that follow each other is the table's record of its number. The first of them
// stands `from` records behind a cluster's start, where record `firstNumber` is.
bool AnyRecordStands(const PartitionCandidate& volume, std::uint64_t cluster, std::uint64_t from,
                     std::uint64_t firstNumber, std::uint64_t count) {
    const std::uint32_t bytes = volume.FileRecordBytes;
    const std::uint64_t sectorsPerRecord = bytes / Engine.SourceDisk.BytesPerSector;
    std::vector<std::uint8_t> records =
        ReadRecords(SectorIn(volume, cluster) + from * sectorsPerRecord, bytes, count);
    for (std::uint64_t i = 0; i < count; ++i) {
        const Bytes record = Bytes(records).subspan(i * bytes, bytes);
        if (CheckRecord(record) && MayHaveNumber(record, firstNumber + from + i)) {
            return true;
        }
    }
    return false;
}

// Behind the records that the mirror has the table goes on, and the mirror doesn't. A table that has no more
// than the mirror doesn't tell.
bool GoesOnAsTable(const PartitionCandidate& volume, const TableHead& head, std::uint64_t cluster) {
    const std::uint64_t mirrored = std::max(kLeastMirrored, head.MirrorBytes / head.RecordBytes);
    return AnyRecordStands(volume, cluster, mirrored, 0, kRecordsBehind);
}

// Copies of the mirror alone lie about on many disks: some records of the table must stand where it leads.
bool TableOfMirrorStands(const PartitionCandidate& volume, const TableHead& mirror) {
    const auto& runs = mirror.Runs.Runs();
    const std::size_t count = std::min(runs.size(), kMaxRunsTried);
    return std::any_of(
        runs.begin(), runs.begin() + static_cast<std::ptrdiff_t>(count), [&](const MapRun& run) {
            const std::uint64_t first = run.Vcn * volume.ClusterBytes / mirror.RecordBytes;
            const bool recordBeginsRun = run.Vcn * volume.ClusterBytes % mirror.RecordBytes == 0;
            return !run.Hole && recordBeginsRun &&
                   AnyRecordStands(volume, run.Lcn, run.Vcn == 0 ? kLeastMirrored : 0, first, kLaterRecords);
        });
}

bool HoldsMoreThanMirror(const TableHead& head) {
    return head.TableBytes / head.RecordBytes > std::max(kLeastMirrored, head.MirrorBytes / head.RecordBytes);
}

// A size that no boot sector states may be a guess, and one that doesn't hold the table is wrong.
bool HasPlausibleMeasures(const PartitionCandidate& volume, bool sizeIsTold) {
    const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    if (sectorBytes == 0 || volume.FileRecordBytes % sectorBytes != 0 || volume.SectorsPerCluster == 0 ||
        !IsPossibleRecordSize(volume.FileRecordBytes) || volume.MftCluster == 0) {
        return false;
    }
    const std::uint64_t clusters = volume.TotalSectors / volume.SectorsPerCluster;
    return sizeIsTold || (volume.MftCluster < clusters && volume.MftMirrCluster < clusters);
}

} // namespace

bool IsPossibleRecordSize(std::uint64_t bytes) {
    return std::has_single_bit(bytes) && bytes >= kSmallestRecord && bytes <= kLargestRecord;
}

bool MayBeTableRecord(ConstBytes sector) {
    if (UsaOffset(sector) == kUsaOffsetNew && OwnRecordNumber(sector) != 0) {
        return false;
    }
    const HeadRecord found = LookAtRecord(sector, kTableName);
    return found.Named || found.Listed;
}

std::optional<TableHead> ReadTableHead(std::uint64_t sector, std::uint32_t recordBytes) {
    std::vector<std::uint8_t> records = ReadRecords(sector, recordBytes, 2);
    const Bytes first = Bytes(records).first(recordBytes);
    const Bytes second = Bytes(records).subspan(recordBytes);
    TableHead head;
    head.RecordBytes = recordBytes;
    if (!CheckRecord(first) || !TakeRecord0(first, head)) {
        return std::nullopt;
    }
    if (CheckRecord(second)) {
        TakeRecord1(second, head);
    }
    return head;
}

std::optional<TableHead> HeadAtCluster(const PartitionCandidate& volume, std::uint64_t cluster) {
    auto head = ReadTableHead(SectorIn(volume, cluster), volume.FileRecordBytes);
    const bool fits = head && head->TableCluster == volume.MftCluster &&
                      (head->MirrorCluster == 0 || head->MirrorCluster == volume.MftMirrCluster) &&
                      (head->ClusterBytes == 0 || head->ClusterBytes == volume.ClusterBytes);
    return fits ? head : std::nullopt;
}

std::optional<std::uint64_t> SectorOfRecord(const PartitionCandidate& volume, const TableHead& head,
                                            std::uint64_t number) {
    const std::uint64_t at = number * head.RecordBytes;
    const MapRun* run = head.Runs.Find(at / volume.ClusterBytes);
    if (run == nullptr || run->Hole) {
        return std::nullopt;
    }
    return SectorIn(volume, run->Lcn) +
           (at - run->Vcn * volume.ClusterBytes) / Engine.SourceDisk.BytesPerSector;
}

bool ReadRecordOf(const PartitionCandidate& volume, std::uint64_t sector, std::uint64_t number,
                  Bytes record) {
    return record.size() == volume.FileRecordBytes && LookAt(record, sector) && CheckRecord(record) &&
           MayHaveNumber(record, number);
}

std::optional<TableHead> FindHeadOf(const PartitionCandidate& volume) {
    const bool startIsTold = volume.VolumeSerial != 0;
    if (!HasPlausibleMeasures(volume, startIsTold)) {
        return std::nullopt;
    }
    auto table = HeadAtCluster(volume, volume.MftCluster);
    auto mirror = volume.MftMirrCluster == 0 ? std::nullopt : HeadAtCluster(volume, volume.MftMirrCluster);
    if (table && (mirror || startIsTold || !HoldsMoreThanMirror(*table) ||
                  GoesOnAsTable(volume, *table, volume.MftCluster))) {
        return table;
    }
    if (!table && mirror && (startIsTold || TableOfMirrorStands(volume, *mirror))) {
        return mirror;
    }
    return std::nullopt;
}

bool LaterRecordsStand(const PartitionCandidate& volume) {
    return HasPlausibleMeasures(volume, true) &&
           AnyRecordStands(volume, volume.MftCluster, kLeastMirrored, 0, kLaterRecords);
}

} // namespace thntfs
