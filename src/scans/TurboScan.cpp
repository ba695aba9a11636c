#include "scans/TurboScan.h"

#include "catalogue/Catalogue.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/Host.h"
#include "engine/RecordTable.h"
#include "engine/SectorReader.h"
#include "platform/system/ReadBuffer.h"
#include "scans/AddedRecords.h"
#include "scans/ConditionAccount.h"
#include "scans/PassedSectors.h"
#include "scans/RecordCataloguing.h"
#include "scans/TablePlaces.h"
#include "scans/TableRemainder.h"

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

namespace thntfs {

namespace {

constexpr std::size_t kReadBytes = std::size_t{128} << 10U;
constexpr std::uint32_t kMaxSpanBytes = 1U << 20U; // far above any index block that NTFS makes

// A span is one index block. A volume that states an impossible size is read in spans of four records.
struct SpanSize {
    std::uint32_t Bytes;
    std::uint32_t Sectors;
};

SpanSize SpanOfVolume() {
    const VolumeParams& volume = Engine.VolumeParams;
    if (volume.IndexBlockBytes != 0 && volume.IndexBlockBytes <= kMaxSpanBytes &&
        volume.SectorsPerIndexBlock != 0) {
        return {volume.IndexBlockBytes, volume.SectorsPerIndexBlock};
    }
    return {4 * volume.FileRecordBytes, 4U * volume.SectorsPerFileRecord};
}

class VolumeWalk {
public:
    explicit VolumeWalk(const ScanReach& reach);

    void Run();
    void JudgeFiles() { conditions_.Judge(); }
    [[nodiscard]] std::uint32_t NextEntryId() const { return nextEntryId_; }

private:
    void WalkSpans();
    void TakeAddedRecords();
    void TakePassed(const std::vector<std::uint64_t>& sectors, const TablePlaces& places);
    void ReadAhead();
    void ReadSpan(Bytes span);
    void ProcessSpan(Bytes span);
    void ProcessRecord(Bytes record);
    std::uint32_t NumberOfRecord(ConstBytes record, std::uint32_t decodedNumber);
    void ReportProgress() const;

    SpanSize span_;
    std::size_t spansAtATime_;
    ReadBuffer buffer_; ///< the spans of one read
    std::size_t spansRead_ = 0;
    std::uint64_t firstSector_;
    std::uint64_t spanSector_;
    std::uint64_t endSector_;
    std::uint64_t recordSector_;
    std::uint32_t runningNumber_ = 1; ///< guess at the record number of the position in hand
    std::uint32_t nextEntryId_ = kFirstEntryId;
    ConditionAccount conditions_;
    bool exact_;
    AddedRecords added_;
    std::optional<PassedSectors> passed_;
};

// Where clusters are smaller than a record one may begin at any sector, and so it may where nobody knows how
// large they are or where the volume begins.
bool AnySectorMayBegin() {
    const VolumeParams& volume = Engine.VolumeParams;
    return volume.ClusterBytes < volume.FileRecordBytes || volume.VolumeSerial == 0;
}

// Where the medium lacks a volume's first sectors the volume begins in front of it, modulo 2^64: the walk
// begins with the first span that is there.
std::uint64_t FirstSpanSector(const SpanSize& span) {
    const std::uint64_t start = Engine.VolumeParams.StartSector;
    const std::uint64_t missing = 0 - start;
    return static_cast<std::int64_t>(start) >= 0
               ? start
               : (missing + span.Sectors - 1) / span.Sectors * span.Sectors - missing;
}

VolumeWalk::VolumeWalk(const ScanReach& reach)
    : span_(SpanOfVolume())
    , spansAtATime_(1)
    , firstSector_(FirstSpanSector(span_))
    , spanSector_(firstSector_)
    , endSector_(Engine.VolumeParams.StartSector + Engine.VolumeParams.TotalSectors)
    , recordSector_(spanSector_)
    , conditions_(reach.Conditions)
    , exact_(reach.Exact && SectorsFitRecords())
    , added_(reach, conditions_, nextEntryId_) {
    const DiskRecord& disk = Engine.SourceDisk;
    // Spans that lie one behind the other can be read together.
    if (std::uint64_t{span_.Sectors} * disk.BytesPerSector == span_.Bytes) {
        spansAtATime_ = std::max<std::size_t>(1, kReadBytes / span_.Bytes);
    }
    buffer_.resize(spansAtATime_ * span_.Bytes);
    // Behind the medium's end there is nothing to find, however large the volume claims to be. A size that no
    // boot sector states is a guess, so nothing is lost by it.
    if (disk.MediaHandle != nullptr && disk.BytesPerSector != 0) {
        const std::uint64_t sectors = MediumBytes() / disk.BytesPerSector;
        if (Engine.VolumeParams.VolumeSerial != 0 && endSector_ > sectors) {
            Engine.Losses.Sectors += endSector_ - std::max(sectors, spanSector_);
        }
        endSector_ = std::min(endSector_, sectors + 1);
    }
    passed_.emplace(firstSector_, endSector_, exact_ && AnySectorMayBegin());
}

void VolumeWalk::Run() {
    ForgetFoundRecords();
    WalkSpans();
    if (Engine.ScanRunFlag != 0) {
        TakeAddedRecords();
    }
}

// What the table holds is read along its map, where each record has its number and parts that lie apart come
// together.
void VolumeWalk::TakeAddedRecords() {
    if (exact_) {
        const std::uint64_t sectors = endSector_ - std::min(endSector_, firstSector_);
        const TriedSlots tried({{firstSector_, sectors / Engine.VolumeParams.SectorsPerFileRecord}});
        TableRemainder(tried, added_, nullptr).Run();
        TakePassed(passed_->Found(), TablePlaces());
    }
    added_.Finish();
}

// Records without a number of their own are numbered from the last one on whose number is known.
void VolumeWalk::TakePassed(const std::vector<std::uint64_t>& sectors, const TablePlaces& places) {
    const std::uint32_t recordSectors = Engine.VolumeParams.SectorsPerFileRecord;
    std::vector<std::uint8_t> record(Engine.VolumeParams.FileRecordBytes);
    RecordPlace last;
    for (const std::uint64_t sector : sectors) {
        if (!JobMayGoOn()) {
            return;
        }
        if (places.RecordAt(sector) || !ReadFileRecord(record, sector)) {
            continue;
        }
        const auto ahead = static_cast<std::uint32_t>((sector - last.Sector) / recordSectors);
        last = {sector, last.Number + ahead};
        last.Number = added_.Take(record, last);
    }
}

void VolumeWalk::WalkSpans() {
    for (std::size_t next = 0; spanSector_ < endSector_ && Engine.ScanRunFlag != 0; ++next) {
        if (next % spansAtATime_ == 0) {
            next = 0;
            if (!JobMayGoOn()) {
                return;
            }
            ReportProgress();
            ReadAhead();
        }
        const Bytes span = Bytes(buffer_).subspan(next * span_.Bytes, span_.Bytes);
        if (next >= spansRead_) {
            if (!JobMayGoOn()) {
                return;
            }
            ReadSpan(span);
        }
        ProcessSpan(span);
        spanSector_ += span_.Sectors;
    }
}

// Reads many spans at once where all of them can be read. Where one can't, each is read by itself.
void VolumeWalk::ReadAhead() {
    spansRead_ = TryReadSectors(buffer_, spanSector_) ? spansAtATime_ : 0;
    if (spansRead_ != 0) {
        passed_->Look(buffer_, spanSector_);
    }
}

// A span may reach behind the volume: what can't be read there is no loss.
void VolumeWalk::ReadSpan(Bytes span) try {
    const ReadOutcome outcome = ReadSectorsCleared(span, spanSector_);
    Engine.Losses.Sectors += static_cast<std::uint64_t>(
        std::count_if(outcome.BadSectors.begin(), outcome.BadSectors.end(),
                      [this](std::uint64_t sector) { return sector < endSector_; }));
    passed_->Look(span, spanSector_);
} catch (const CUserException&) {
    Engine.Losses.Sectors +=
        std::max(std::min(endSector_, Engine.SourceDisk.TotalSectors), spanSector_) - spanSector_;
    throw;
}

void VolumeWalk::ProcessSpan(Bytes span) {
    const VolumeParams& volume = Engine.VolumeParams;
    if (U32At(span, 0) == kIndexMagic && CheckIndexBlock(span, volume.BytesPerSector)) {
        HarvestIndexBlock(span, nextEntryId_);
        recordSector_ += span_.Sectors;
        runningNumber_ = 0;
        return;
    }
    for (std::size_t at = 0; at < span.size(); at += volume.FileRecordBytes) {
        if (span.size() - at >= volume.FileRecordBytes) {
            ProcessRecord(span.subspan(at, volume.FileRecordBytes));
        }
        recordSector_ += volume.SectorsPerFileRecord;
        ++runningNumber_;
    }
}

void VolumeWalk::ProcessRecord(Bytes record) {
    const VolumeParams& volume = Engine.VolumeParams;
    if (U32At(record, 0) != kFileMagic ||
        !CheckFileRecord(record, volume.FileRecordBytes, volume.BytesPerSector)) {
        return;
    }
    if (exact_ && UsaOffset(record) == kUsaOffsetNew) {
        NoteFoundRecord(OwnRecordNumber(record), recordSector_);
    }
    const Claim claim = conditions_.Take(record, recordSector_);
    if (BaseReference(record) != 0) {
        return;
    }
    DecodedEntry entry;
    if (!DecodeFileRecord(record, entry)) {
        added_.NoteLeftOut(record, {recordSector_, runningNumber_}, claim);
        return;
    }
    entry.RecordNumber = NumberOfRecord(record, entry.RecordNumber);
    entry.RecordSector = recordSector_;
    CatalogueRecord(entry, IsDirectory(record), nextEntryId_);
    conditions_.Enter(claim, entry.EntryId);
}

std::uint32_t VolumeWalk::NumberOfRecord(ConstBytes record, std::uint32_t decodedNumber) {
    if (UsaOffset(record) == kUsaOffsetNew) {
        runningNumber_ = OwnRecordNumber(record);
    } else if (decodedNumber != 0) {
        if (!IsDirectory(record)) {
            return decodedNumber;
        }
        runningNumber_ = decodedNumber;
    }
    return runningNumber_;
}

void VolumeWalk::ReportProgress() const {
    Engine.ProgressDone = spanSector_ - Engine.VolumeParams.StartSector;
    Engine.ProgressTotal = Engine.VolumeParams.TotalSectors;
    Host().JobProgress();
}

} // namespace

std::uint32_t TurboScan(const ScanReach& reach) try {
    const VolumeParams& volume = Engine.VolumeParams;
    const ScanAccount account;
    std::uint32_t nextEntryId = kFirstEntryId;
    if (volume.FileRecordBytes != 0 && volume.SectorsPerFileRecord != 0 && volume.BytesPerSector != 0) {
        VolumeWalk walk(reach);
        UpToFatalError([&walk] { walk.Run(); });
        UpToFatalError([&walk] { walk.JudgeFiles(); });
        nextEntryId = walk.NextEntryId();
    }
    UpToFatalError([nextEntryId] { FinishCatalogue(nextEntryId); });
    return Engine.ScanRunFlag;
} catch (const std::bad_alloc&) {
    return 0; // records of an absurd size
}

} // namespace thntfs
