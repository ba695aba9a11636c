#include "engine/TableMap.h"

#include "engine/AttributePieces.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/FoundRecords.h"
#include "engine/SectorReader.h"

#include <algorithm>
#include <new>

namespace thntfs {

namespace {

using TableRecord = std::vector<std::uint8_t>;

/// Puts the runs together, piece by piece.
class TableMapBuilder {
public:
    TableMap Build();

private:
    bool TryRecordAt(std::uint64_t sector);
    void TakeListedPieces(const Attribute& list);
    [[nodiscard]] bool IsReached(std::uint64_t number) const;
    bool TakePiece(const ListedPiece& piece);
    bool Take(ConstBytes record, const Attribute& data);
    void TakeExtents();

    TableRecord record_ = TableRecord(Engine.VolumeParams.FileRecordBytes);
    TableRecord extension_ = record_;
    TableMap map_;
};

bool IsTableData(const Attribute& attribute) {
    return attribute.Type() == kTypeData && attribute.NameLength() == 0 && attribute.NonResident() != 0;
}

bool CheckRecordOfVolume(Bytes record) {
    return CheckFileRecord(record, Engine.VolumeParams.FileRecordBytes, Engine.VolumeParams.BytesPerSector);
}

std::uint64_t ClustersOfVolume() {
    const VolumeParams& volume = Engine.VolumeParams;
    const std::uint64_t stated =
        std::min(volume.TotalSectors, ~std::uint64_t{0} >> 16U) * volume.BytesPerSector;
    return std::max(stated, MediumBytes()) / std::max(1U, volume.ClusterBytes);
}

TableMap TableMapBuilder::Build() {
    const VolumeParams& volume = Engine.VolumeParams;
    const std::uint64_t table = SectorOfCluster(volume.MftCluster);
    const std::uint64_t mirror = SectorOfCluster(volume.MftMirrCluster);
    map_.Whole = true;
    if (!(volume.MftSector != 0 && TryRecordAt(volume.MftSector)) &&
        !(volume.MftCluster != 0 && TryRecordAt(table)) &&
        !(volume.MftMirrCluster != 0 && TryRecordAt(mirror))) {
        TakeExtents();
    }
    return std::move(map_);
}

bool TableMapBuilder::TryRecordAt(std::uint64_t sector) {
    ReadSectorsCleared(record_, sector);
    if (!CheckRecordOfVolume(record_) || !MayHaveNumber(record_, 0) || BaseReference(record_) != 0) {
        return false;
    }
    map_ = {.Runs = {}, .Whole = true, .VolumeInWork = Engine.VolumeInWork};
    for (AttributeWalk walk(record_); walk.Valid() && walk.Current().Type() <= kTypeData; walk.Next()) {
        const Attribute attribute = walk.Current();
        if (attribute.Type() == kTypeAttributeList) {
            TakeListedPieces(attribute);
            break;
        }
        if (IsTableData(attribute)) {
            map_.Whole = Take(record_, attribute);
            break;
        }
    }
    return !map_.Runs.Runs().empty();
}

// A piece may lie in a record that another piece leads to: those whose record can't be reached yet wait for
// the others. Each record is read once.
void TableMapBuilder::TakeListedPieces(const Attribute& list) {
    const TableRecord value = ReadListValue(record_, list, map_.Whole);
    std::vector<ListedPiece> pending = ListedPieces(value, map_.Whole);
    std::erase_if(pending, [](const ListedPiece& p) { return p.Type != kTypeData || !p.Name.empty(); });
    for (std::size_t before = pending.size() + 1; pending.size() < before;) {
        before = pending.size();
        std::erase_if(pending, [this](const ListedPiece& piece) {
            return IsReached(NumberOf(piece.Reference)) && TakePiece(piece);
        });
    }
    for (const ListedPiece& piece : pending) {
        TakePiece(piece);
    }
}

bool TableMapBuilder::IsReached(std::uint64_t number) const {
    const std::uint64_t clusterBytes = Engine.VolumeParams.ClusterBytes;
    const std::uint64_t offset = number * record_.size();
    return number == 0 || (map_.Runs.Find(offset / clusterBytes) != nullptr &&
                           map_.Runs.Find((offset + record_.size() - 1) / clusterBytes) != nullptr);
}

// Always true: a piece that can't be had is given up.
bool TableMapBuilder::TakePiece(const ListedPiece& piece) {
    const bool inBase = NumberOf(piece.Reference) == 0;
    const bool read =
        inBase || ReadRecordByMap(map_.Runs, NumberOf(piece.Reference), extension_, [&](ConstBytes record) {
            const std::uint64_t base = BaseReference(record);
            return NumberOf(base) == 0 && SequenceOf(base) != 0 && SequenceFits(record_, SequenceOf(base)) &&
                   SequenceFits(record, SequenceOf(piece.Reference));
        });
    const ConstBytes record(inBase ? record_ : extension_);
    const auto data = read ? FindListed(record, piece) : std::nullopt;
    map_.Whole = data && Take(record, *data) && map_.Whole;
    return true;
}

// A table doesn't grow larger than its volume.
bool TableMapBuilder::Take(ConstBytes record, const Attribute& data) {
    return data.NonResident() != 0 &&
           map_.Runs.Add(RunListOf(record, data), data.FirstCluster(), ClustersOfVolume());
}

void TableMapBuilder::TakeExtents() {
    const VolumeParams& volume = Engine.VolumeParams;
    map_ = {.Runs = {}, .Whole = false, .VolumeInWork = Engine.VolumeInWork};
    for (const MftExtent& extent : volume.MftExtents) {
        if (map_.Runs.EndVcn() + extent.Clusters <= ClustersOfVolume()) {
            map_.Runs.Append(extent.Clusters, extent.StartCluster);
        }
    }
}

} // namespace

TableMap BuildTableMap() {
    const VolumeParams& volume = Engine.VolumeParams;
    const std::uint32_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    const bool usable = sectorBytes != 0 && volume.BytesPerSector != 0 && volume.ClusterBytes != 0 &&
                        volume.ClusterBytes % sectorBytes == 0 && volume.FileRecordBytes != 0 &&
                        volume.FileRecordBytes % sectorBytes == 0;
    return usable ? TableMapBuilder().Build() : TableMap{.Runs = {}, .VolumeInWork = Engine.VolumeInWork};
}

bool ReadRecordByMap(const RunMap& runs, std::uint64_t number, Bytes record, const RecordTest& fits) {
    const std::uint64_t offset = number * Engine.VolumeParams.FileRecordBytes;
    const auto isRight = [&] {
        return CheckRecordOfVolume(record) && MayHaveNumber(record, number) && (!fits || fits(record));
    };
    if (number <= kReferenceNumber) {
        ReadByRuns(runs, offset,
                   record); // what can't be had is zeros, which matter only within its used bytes
        if (isRight()) {
            return true;
        }
    }
    if (Engine.Found != nullptr && number <= UINT32_MAX) {
        for (const std::uint64_t sector : Engine.Found->SectorsOf(static_cast<std::uint32_t>(number))) {
            ReadSectorsCleared(record, sector);
            if (isRight()) {
                return true;
            }
        }
    }
    return false;
}

} // namespace thntfs
