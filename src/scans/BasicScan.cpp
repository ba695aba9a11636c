#include "scans/BasicScan.h"

#include "catalogue/Catalogue.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/Host.h"
#include "engine/SectorReader.h"
#include "scans/AddedRecords.h"
#include "scans/ConditionAccount.h"
#include "scans/RecordCataloguing.h"
#include "scans/TableLosses.h"
#include "scans/TablePlaces.h"
#include "scans/TableRemainder.h"

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint32_t kBatchSectors = 128;

// How far ahead of their use a folder's node, and then the end of its chain, are fetched from memory.
constexpr std::size_t kNodeAhead = 8;
constexpr std::size_t kChainAhead = 4;

struct DecodedRecord {
    DecodedEntry Entry;
    thntfs::Claim Claim;
    bool Directory = false;
};

class TableWalk {
public:
    explicit TableWalk(const ScanReach& reach)
        : reach_(reach)
        , batchRecords_(std::max(1U, kBatchSectors / Engine.VolumeParams.SectorsPerFileRecord))
        , batch_(std::size_t{batchRecords_} * Engine.VolumeParams.FileRecordBytes)
        , decoded_(batchRecords_)
        , conditions_(reach.Conditions)
        , added_(reach, conditions_, nextEntryId_) {}

    void Run();
    void JudgeFiles() { conditions_.Judge(); }
    [[nodiscard]] bool Stopped() const { return stopped_ || Engine.Lists.Stopped; }
    [[nodiscard]] std::uint32_t NextEntryId() const { return nextEntryId_; }

private:
    void MakeOutPlaces();
    void WalkExtents();
    void WalkExtent(const MftExtent& extent);
    void PassOverFront(std::uint32_t& left);
    void TakeRemainder();
    void ReportProgress() const;
    void ReadBatch(std::uint32_t records);
    void ReadAndDecodeBatch(std::uint32_t records);
    void DecodeBatch(std::uint32_t records);
    void DecodeSlot(Bytes record);
    [[nodiscard]] std::uint32_t NumberOfSlot() const;
    void CatalogueBatch();
    [[nodiscard]] bool IsBehindMedium() const;

    ScanReach reach_;
    std::optional<TablePlaces> places_; ///< of a scan that goes beyond the extents
    std::vector<SlotRow> tried_;
    std::uint32_t batchRecords_;
    std::vector<std::uint8_t> batch_;
    std::vector<DecodedRecord> decoded_; ///< of the batch in hand; the first decodedCount_ count
    std::size_t decodedCount_ = 0;
    std::uint64_t recordSector_ = 0; ///< absolute sector of the record slot in hand
    std::uint32_t recordIndex_ = 0;  ///< record slots passed, valid or not
    std::uint32_t nextEntryId_ = kFirstEntryId;
    ConditionAccount conditions_;
    AddedRecords added_;
    TableLosses losses_;
    bool stopped_ = false;
};

void TableWalk::Run() {
    if (reach_.Exact && SectorsFitRecords()) {
        MakeOutPlaces();
    }
    WalkExtents();
    if (!Stopped() && places_) {
        TakeRemainder();
    }
    if (!Stopped()) {
        stopped_ = !added_.Finish();
    }
    if (!Stopped()) {
        losses_.Finish();
    }
}

void TableWalk::MakeOutPlaces() try {
    places_.emplace();
    losses_.UseExactMap(*places_);
} catch (const CUserException&) {
    losses_.LeaveUnread(0);
    throw;
}

void TableWalk::WalkExtents() {
    for (const MftExtent& extent : Engine.VolumeParams.MftExtents) {
        WalkExtent(extent);
    }
}

void TableWalk::TakeRemainder() {
    const TriedSlots tried(std::move(tried_));
    stopped_ = !TableRemainder(tried, added_, &losses_).Run();
}

void TableWalk::WalkExtent(const MftExtent& extent) {
    recordSector_ = SectorOfCluster(extent.StartCluster);
    if (places_) {
        losses_.BeginRow(recordIndex_, places_->RecordAt(recordSector_));
        tried_.push_back({recordSector_, RecordsInExtent(extent)});
    }
    std::uint32_t left = RecordsInExtent(extent);
    PassOverFront(left);
    while (left > 0) {
        if (!JobMayGoOn()) {
            stopped_ = true;
            return;
        }
        ReportProgress();
        if (IsBehindMedium()) {
            // Nothing but zeros can be read here, however long the run claims to be.
            losses_.LeaveBehindEnd(recordIndex_, left);
            recordIndex_ += left;
            return;
        }
        const std::uint32_t records = std::min(left, batchRecords_);
        left -= records;
        ReadAndDecodeBatch(records);
        CatalogueBatch();
    }
}

void TableWalk::PassOverFront(std::uint32_t& left) {
    const auto slots = static_cast<std::uint32_t>(std::min<std::uint64_t>(left, SlotsInFront(recordSector_)));
    losses_.LeaveInFront(recordIndex_, slots);
    recordSector_ += std::uint64_t{slots} * Engine.VolumeParams.SectorsPerFileRecord;
    recordIndex_ += slots;
    left -= slots;
}

void TableWalk::ReadAndDecodeBatch(std::uint32_t records) try {
    ReadBatch(records);
    DecodeBatch(records);
} catch (const CUserException&) {
    losses_.LeaveUnread(recordIndex_);
    CatalogueBatch(); // what stood in front of the record that couldn't be followed
    throw;
}

void TableWalk::ReportProgress() const {
    Engine.ProgressTotal = Engine.VolumeParams.MftRecordCount;
    Engine.ProgressDone = recordIndex_;
    Host().JobProgress();
}

void TableWalk::ReadBatch(std::uint32_t records) {
    const Bytes wanted(batch_.data(), std::size_t{records} * Engine.VolumeParams.FileRecordBytes);
    const ReadOutcome outcome = ReadSectorsCleared(wanted, recordSector_);
    losses_.BeginBatch(outcome, recordSector_, recordIndex_, records);
}

bool TableWalk::IsBehindMedium() const {
    const DiskRecord& disk = Engine.SourceDisk;
    return disk.MediaHandle != nullptr && disk.BytesPerSector != 0 &&
           recordSector_ > MediumBytes() / disk.BytesPerSector;
}

// A batch is decoded as a whole and then catalogued: the parents' places in the folder tree are on their way
// from memory meanwhile.
void TableWalk::DecodeBatch(std::uint32_t records) {
    const VolumeParams& volume = Engine.VolumeParams;
    decodedCount_ = 0;
    for (std::uint32_t i = 0; i < records; ++i) {
        DecodeSlot(Bytes(batch_).subspan(std::size_t{i} * volume.FileRecordBytes, volume.FileRecordBytes));
        recordSector_ += volume.SectorsPerFileRecord;
        ++recordIndex_;
    }
}

void TableWalk::DecodeSlot(Bytes record) {
    const VolumeParams& volume = Engine.VolumeParams;
    std::uint64_t firstNonResident = 0;
    if (!CheckFileRecord(record, volume.FileRecordBytes, volume.BytesPerSector, firstNonResident)) {
        losses_.Reject(record, recordIndex_);
        return;
    }
    losses_.Accept();
    DecodedRecord& decoded = decoded_[decodedCount_];
    decoded.Claim = conditions_.Take(record, recordSector_, firstNonResident);
    if (BaseReference(record) != 0) {
        return;
    }
    DecodedEntry& entry = decoded.Entry;
    entry.Clear();
    const bool kept = DecodeFileRecord(record, entry);
    TableLosses::NoteList();
    if (!kept) {
        added_.NoteLeftOut(record, {recordSector_, NumberOfSlot()}, decoded.Claim);
        return;
    }
    if (UsaOffset(record) == kUsaOffsetNew) {
        entry.RecordNumber = OwnRecordNumber(record);
    } else if (entry.RecordNumber == 0) {
        entry.RecordNumber = recordIndex_;
    }
    entry.RecordSector = recordSector_;
    decoded.Directory = IsDirectory(record);
    Engine.Folders->PrefetchSlot(entry.ParentNumber);
    ++decodedCount_;
}

// The number of the record in hand by its place, as far as that is known.
std::uint32_t TableWalk::NumberOfSlot() const {
    const auto number = places_ ? places_->RecordAt(recordSector_) : std::nullopt;
    return static_cast<std::uint32_t>(number.value_or(recordIndex_));
}

void TableWalk::CatalogueBatch() {
    for (std::size_t i = 0; i < decodedCount_; ++i) {
        if (i + kNodeAhead < decodedCount_) {
            Engine.Folders->PrefetchNode(decoded_[i + kNodeAhead].Entry.ParentNumber);
        }
        if (i + kChainAhead < decodedCount_) {
            PrefetchChain(decoded_[i + kChainAhead].Entry.ParentNumber);
        }
        CatalogueRecord(decoded_[i].Entry, decoded_[i].Directory, nextEntryId_);
        conditions_.Enter(decoded_[i].Claim, decoded_[i].Entry.EntryId);
    }
    decodedCount_ = 0;
}

} // namespace

int BasicScan(const ScanReach& reach) try {
    const VolumeParams& volume = Engine.VolumeParams;
    if (volume.FileRecordBytes == 0 || volume.BytesPerSector == 0 || volume.SectorsPerFileRecord == 0) {
        return 0;
    }
    const ScanAccount account;
    TableWalk walk(reach);
    UpToFatalError([&walk] { walk.Run(); });
    UpToFatalError([&walk] { FinishCatalogue(walk.NextEntryId()); });
    UpToFatalError([&walk] { walk.JudgeFiles(); });
    return walk.Stopped() ? 0 : 1;
} catch (const std::bad_alloc&) {
    return 0; // records of an absurd size
}

} // namespace thntfs
