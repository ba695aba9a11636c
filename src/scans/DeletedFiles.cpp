#include "scans/DeletedFiles.h"

#include "catalogue/Conditions.h"
#include "engine/AttributePieces.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/RunListCursor.h"
#include "scans/ClaimSweep.h"
#include "scans/FileRuns.h"

#include <algorithm>
#include <new>

namespace thntfs {

namespace {

constexpr std::size_t kMaxFiles = 4U << 20U; // 40 bytes each
constexpr std::size_t kMaxRuns = 8U << 20U;  // 16 bytes each
constexpr std::uint64_t kMaxRunSectors = 0xFFFFFFFF;
constexpr std::uint64_t kLogSequenceAt = 8;

std::uint64_t LatestStamp(ConstBytes standardInformation) {
    return std::max(
        {U64At(standardInformation, 0), U64At(standardInformation, 8), U64At(standardInformation, 16)});
}

std::uint64_t ReferenceOf(ConstBytes record) {
    return OwnRecordNumber(record) | std::uint64_t{RecordSequence(record)} << 48U;
}

DeletedFile FileOf(ConstBytes record) {
    DeletedFile file;
    file.LogSequence = U64At(record, kLogSequenceAt);
    file.RecordNumber = UsaOffset(record) == kUsaOffsetNew ? OwnRecordNumber(record) : 0;
    file.Sequence = RecordSequence(record);
    return file;
}

} // namespace

Claim DeletedFiles::Take(ConstBytes record) {
    if (gaveUp_ || files_.size() >= kMaxFiles || runs_.size() >= kMaxRuns) {
        GiveUp();
        return {kNoFile, kUnknown};
    }
    if (const std::uint64_t base = BaseReference(record); base != 0) {
        TakePieces(record, base);
        return {};
    }
    return IsDirectory(record) ? Claim{} : TakeBase(record);
}

Claim DeletedFiles::TakeBase(ConstBytes record) {
    DeletedFile file = FileOf(record);
    const std::size_t runsBefore = runs_.size();
    bool hasData = false;
    for (AttributeWalk walk(record); walk.Valid(); walk.Next()) {
        const Attribute attribute = walk.Current();
        const std::uint32_t type = attribute.Type();
        if (type > kTypeData) {
            break;
        }
        if (type == kTypeStandardInformation) {
            file.Stamp = LatestStamp(attribute.Value());
        } else if (type == kTypeAttributeList) {
            return TakeSplit(record, file);
        } else if (type == kTypeData && HoldsFileData(record, attribute)) {
            hasData = true;
            file.Sound = (attribute.NonResident() == 0 || TakeRuns(record, attribute, file)) && file.Sound;
        }
    }
    if (runs_.size() == runsBefore && file.Sectors == 0) {
        return {kNoFile, hasData && file.Sound ? kWhole : kUnknown};
    }
    return Keep(file);
}

// In the older form a record doesn't know its number, by which its pieces would be found.
Claim DeletedFiles::TakeSplit(ConstBytes record, const DeletedFile& file) {
    if (UsaOffset(record) != kUsaOffsetNew) {
        return {kNoFile, kUnknown};
    }
    TakePieces(record, ReferenceOf(record));
    split_.AddFile(static_cast<std::uint32_t>(files_.size()), ReferenceOf(record));
    return Keep(file);
}

Claim DeletedFiles::Keep(const DeletedFile& file) {
    files_.push_back(file);
    return {static_cast<std::uint32_t>(files_.size() - 1)};
}

bool DeletedFiles::TakeRuns(ConstBytes record, const Attribute& data, DeletedFile& file) {
    const std::uint64_t clusterSectors = OwnClusterSectors(data);
    if (clusterSectors == 0 || data.FirstCluster() != 0) {
        return false;
    }
    const std::uint64_t needed = NeededClusters(data, clusterSectors * Engine.VolumeParams.BytesPerSector);
    const auto place = static_cast<std::uint32_t>(files_.size());
    RunListCursor cursor(record, data);
    for (MapRun run; cursor.EndVcn() < needed && cursor.Next(run);) {
        if (!run.Hole) {
            file.Sectors += AddRun(run.Lcn, std::min(run.Clusters, needed - run.Vcn), clusterSectors, place);
        }
    }
    return cursor.EndVcn() >= needed;
}

void DeletedFiles::TakePieces(ConstBytes record, std::uint64_t baseReference) {
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() <= kTypeData; walk.Next()) {
        if (const Attribute attribute = walk.Current(); HoldsFileData(record, attribute)) {
            split_.AddPiece(PieceOf(record, attribute, baseReference));
        }
    }
}

// A resident piece is a stream of no clusters.
DataPiece DeletedFiles::PieceOf(ConstBytes record, const Attribute& data, std::uint64_t baseReference) {
    DataPiece piece;
    piece.BaseReference = baseReference;
    piece.Named = data.NameLength() != 0;
    if (data.NonResident() == 0) {
        return piece;
    }
    piece.FirstVcn = data.FirstCluster();
    piece.NeededVcns = NeededClusters(data, Engine.VolumeParams.ClusterBytes);
    piece.FirstRun = static_cast<std::uint32_t>(runs_.size());
    RunListCursor cursor(record, data);
    for (MapRun run; cursor.Next(run);) {
        if (!run.Hole) {
            piece.Sectors += AddRun(run.Lcn, run.Clusters, space_.SectorsPerCluster, kNoFile);
        }
    }
    piece.EndVcn = cursor.EndVcn();
    piece.Runs = static_cast<std::uint32_t>(runs_.size()) - piece.FirstRun;
    return piece;
}

// What lies behind the end of the volume or the medium counts, but nobody has it.
std::uint64_t DeletedFiles::AddRun(std::uint64_t lcn, std::uint64_t clusters, std::uint64_t clusterSectors,
                                   std::uint32_t file) {
    const std::uint64_t first = lcn * clusterSectors;
    const std::uint64_t count = clusters * clusterSectors;
    const std::uint64_t end = std::min(first + count, std::max(first, space_.Sectors()));
    for (std::uint64_t at = first; at < end; at += kMaxRunSectors) {
        runs_.push_back({at, static_cast<std::uint32_t>(std::min(end - at, kMaxRunSectors)), file});
    }
    return count;
}

void DeletedFiles::JoinPieces() {
    split_.Join([this](std::uint32_t place, const JoinedPieces& joined) {
        DeletedFile& file = files_[place];
        file.Sound = joined.Whole;
        for (const DataPiece& piece : joined.Pieces) {
            file.Sectors += piece.Sectors;
            for (std::uint32_t i = 0; i < piece.Runs; ++i) {
                runs_[piece.FirstRun + i].File = place;
            }
        }
    });
    std::erase_if(runs_, [](const ClaimedRun& run) { return run.File == kNoFile; });
}

void DeletedFiles::Judge(const ClusterSet& used, UsedBy by) try {
    // Until all is known. From the last on, so that room is made for all at once.
    for (auto file = files_.rbegin(); file != files_.rend(); ++file) {
        if (file->EntryId != 0) {
            SetCondition(file->EntryId, kUnknown);
        }
    }
    if (!gaveUp_ && !files_.empty()) {
        SweepAndJudge(used, by);
    }
} catch (const std::bad_alloc&) {
    // What hasn't been judged by now stays as it is.
}

void DeletedFiles::SweepAndJudge(const ClusterSet& used, UsedBy by) {
    JoinPieces();
    UsedClusters clusters(used, by, space_);
    ClaimSweep sweep(files_, clusters);
    sweep.Run(runs_);
    for (std::uint32_t place = 0; place < files_.size(); ++place) {
        const DeletedFile& file = files_[place];
        if (file.EntryId != 0 && file.Sound) {
            SetCondition(file.EntryId, sweep.ConditionOfFile(place));
        }
    }
}

} // namespace thntfs
