#include "engine/RecordTable.h"

#include "engine/AttributePieces.h"
#include "engine/EngineState.h"
#include "engine/FoundRecords.h"

#include <algorithm>

namespace thntfs {

namespace {

const TableMap& TableInWork() {
    if (Engine.Table == nullptr || Engine.Table->VolumeInWork != Engine.VolumeInWork) {
        Engine.Table = std::make_shared<TableMap>(BuildTableMap());
    }
    return *Engine.Table;
}

SectorRange RangeOf(const MapRun& run, std::uint64_t offset, std::uint64_t bytes) {
    const std::uint32_t clusterBytes = Engine.VolumeParams.ClusterBytes;
    return {SectorInCluster(run.Lcn, offset - run.Vcn * clusterBytes, clusterBytes),
            bytes / Engine.SourceDisk.BytesPerSector};
}

void AppendRange(std::vector<SectorRange>& ranges, const SectorRange& range) {
    if (!ranges.empty() && ranges.back().First + ranges.back().Count == range.First) {
        ranges.back().Count += range.Count;
    } else {
        ranges.push_back(range);
    }
}

/// Goes along the table's runs and hands over what lies in each, and what reaches out of it.
class StretchWalk {
public:
    explicit StretchWalk(const std::function<bool(const TableStretch&)>& visit)
        : visit_(visit) {}

    void Run(const RunMap& runs) {
        for (const MapRun& run : runs.Runs()) {
            if (!run.Hole && !(VisitWhole(run) && VisitLast(run))) {
                return;
            }
        }
    }

private:
    bool VisitWhole(const MapRun& run) {
        const std::uint64_t start = run.Vcn * clusterBytes_;
        const std::uint64_t first = (start + recordBytes_ - 1) / recordBytes_;
        const std::uint64_t end = run.End() * clusterBytes_ / recordBytes_;
        if (first >= end) {
            return true;
        }
        const std::uint64_t bytes = (end - first) * recordBytes_;
        return visit_({first, end - first, {RangeOf(run, first * recordBytes_, bytes)}});
    }

    // The record that begins in the run and reaches behind it.
    bool VisitLast(const MapRun& run) {
        const std::uint64_t end = run.End() * clusterBytes_;
        const std::uint64_t number = end / recordBytes_;
        if (end % recordBytes_ == 0 || number * recordBytes_ < run.Vcn * clusterBytes_) {
            return true;
        }
        std::vector<SectorRange> ranges = TableRecordRanges(number);
        return ranges.empty() || visit_({number, 1, std::move(ranges)});
    }

    const std::function<bool(const TableStretch&)>& visit_;
    std::uint64_t clusterBytes_ = Engine.VolumeParams.ClusterBytes;
    std::uint64_t recordBytes_ = Engine.VolumeParams.FileRecordBytes;
};

} // namespace

std::uint64_t TableRecordCount() {
    const VolumeParams& volume = Engine.VolumeParams;
    const std::uint64_t clusters = TableInWork().Runs.EndVcn();
    return clusters == 0 ? 0 : clusters * volume.ClusterBytes / volume.FileRecordBytes;
}

bool TableIsWhole() { return TableInWork().Whole; }

void VisitTableStretches(const std::function<bool(const TableStretch&)>& visit) {
    StretchWalk(visit).Run(TableInWork().Runs);
}

std::vector<SectorRange> TableRecordRanges(std::uint64_t number) {
    const RunMap& runs = TableInWork().Runs;
    std::vector<SectorRange> ranges;
    if (runs.Runs().empty() || number > kReferenceNumber) {
        return ranges;
    }
    const std::uint64_t clusterBytes = Engine.VolumeParams.ClusterBytes;
    std::uint64_t offset = number * Engine.VolumeParams.FileRecordBytes;
    const std::uint64_t end = offset + Engine.VolumeParams.FileRecordBytes;
    while (offset < end) {
        const MapRun* run = runs.Find(offset / clusterBytes);
        if (run == nullptr || run->Hole) {
            return {};
        }
        const std::uint64_t bytes = std::min(end, run->End() * clusterBytes) - offset;
        AppendRange(ranges, RangeOf(*run, offset, bytes));
        offset += bytes;
    }
    return ranges;
}

std::optional<std::uint64_t> TableRecordSector(std::uint64_t number) {
    const std::vector<SectorRange> ranges = TableRecordRanges(number);
    return ranges.empty() ? std::nullopt : std::optional(ranges.front().First);
}

bool ReadTableRecord(std::uint64_t number, Bytes record, const RecordTest& fits) {
    return ReadRecordByMap(TableInWork().Runs, number, record, fits);
}

void NoteFoundRecord(std::uint32_t number, std::uint64_t sector) {
    const VolumeParams& volume = Engine.VolumeParams;
    if (Engine.Found == nullptr) {
        Engine.Found = std::make_shared<FoundRecords>();
    }
    if (Engine.SourceDisk.BytesPerSector != 0) {
        Engine.Found->Note(number, sector, volume.FileRecordBytes / Engine.SourceDisk.BytesPerSector);
    }
}

void ForgetFoundRecords() { Engine.Found.reset(); }

} // namespace thntfs
