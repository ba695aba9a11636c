#include "scans/SlotBitmap.h"

#include "engine/AttributePieces.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/RecordTable.h"
#include "engine/SectorReader.h"

#include <algorithm>
#include <optional>

namespace thntfs {

namespace {

constexpr std::uint64_t kMaxBitmapBytes = std::uint64_t{64} << 20U; // of half a billion records
constexpr std::uint8_t kAlwaysInUse = 0x0F;                         // $MFT, $MFTMirr, $LogFile, $Volume

using SlotRecord = std::vector<std::uint8_t>;

bool ReadRecordOfTable(SlotRecord& record) {
    const VolumeParams& volume = Engine.VolumeParams;
    ReadSectorsCleared(record, volume.MftSector);
    return (CheckFileRecord(record, volume.FileRecordBytes, volume.BytesPerSector) &&
            MayHaveNumber(record, 0)) ||
           ReadTableRecord(0, record);
}

std::optional<Attribute> FindOfType(ConstBytes record, std::uint32_t type) {
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() <= type; walk.Next()) {
        if (walk.Current().Type() == type) {
            return walk.Current();
        }
    }
    return std::nullopt;
}

/// The record that an attribute list says holds the bitmap's first piece; empty where none can be had.
SlotRecord RecordOfListedBitmap(ConstBytes head, const Attribute& list) {
    bool whole = true;
    for (const ListedPiece& piece : ListedPieces(ReadListValue(head, list, whole), whole)) {
        SlotRecord record(head.size());
        if (piece.Type == kTypeBitmap && piece.FirstVcn == 0 && NumberOf(piece.Reference) != 0) {
            return ReadTableRecord(NumberOf(piece.Reference), record) ? record : SlotRecord();
        }
    }
    return {};
}

std::vector<std::uint8_t> ReadValueOf(ConstBytes record, const Attribute& bitmap) {
    if (bitmap.NonResident() == 0) {
        const ConstBytes value = bitmap.Value();
        return {value.begin(), value.end()};
    }
    RunMap runs;
    runs.Add(RunListOf(record, bitmap), bitmap.FirstCluster());
    const std::uint64_t sectorBytes = std::max<std::uint64_t>(Engine.SourceDisk.BytesPerSector, 1);
    const std::uint64_t bytes =
        std::min({bitmap.RealBytes(), bitmap.InitialisedBytes(), kMaxBitmapBytes, MediumBytes()});
    std::vector<std::uint8_t> bits((bytes + sectorBytes - 1) / sectorBytes * sectorBytes);
    ReadByRuns(runs, 0, bits);
    return bits;
}

} // namespace

SlotBitmap::SlotBitmap() {
    SlotRecord head(Engine.VolumeParams.FileRecordBytes);
    if (!ReadRecordOfTable(head)) {
        return;
    }
    if (const auto bitmap = FindOfType(head, kTypeBitmap)) {
        stated_ = true;
        bits_ = ReadValueOf(head, *bitmap);
        return;
    }
    if (const auto list = FindOfType(head, kTypeAttributeList)) {
        const SlotRecord record = RecordOfListedBitmap(head, *list);
        if (const auto bitmap = record.empty() ? std::nullopt : FindOfType(record, kTypeBitmap)) {
            stated_ = true;
            bits_ = ReadValueOf(record, *bitmap);
        }
    }
}

bool SlotBitmap::ShouldHoldRecord(std::uint64_t slot) const {
    const bool sound = (U8At(bits_, 0) & kAlwaysInUse) == kAlwaysInUse;
    return stated_ && (!sound || (U8At(bits_, slot / 8) >> slot % 8 & 1U) != 0);
}

} // namespace thntfs
