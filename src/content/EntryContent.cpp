#include "content/EntryContent.h"

#include "content/ContentJob.h"
#include "engine/ClusterSize.h"
#include "engine/DecodeRecord.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/FileWrites.h"
#include "engine/RunList.h"
#include "engine/SectorReader.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <optional>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint32_t kClustersPerPiece = 16;
constexpr std::uint32_t kPieceBytes = 1U << 20U;

using RecordBuffer = std::vector<std::uint8_t>;

// 16, and of large clusters as many as a buffer of some size takes.
std::uint32_t ClustersPerPiece() {
    return std::clamp(kPieceBytes / Engine.VolumeParams.ClusterBytes, 1U, kClustersPerPiece);
}

ListVisitor NodeCollector(std::vector<AttributeListNode>& nodes) {
    return [&nodes](const AttributeListEntry& entry) {
        if (!IsValidType(entry.Type())) {
            return ListStep::End;
        }
        nodes.push_back(MakeListNode(entry));
        return ListStep::GoOn;
    };
}

using RecordVisitor = std::function<void(ConstBytes record)>;

// The pieces of the data come one behind the other in the order of the list.
bool VisitListedRecords(RecordBuffer& record, const RecordVisitor& visit) {
    std::vector<AttributeListNode> nodes;
    ReadAttributeList(record, nodes);
    for (const AttributeListNode& node : nodes) {
        if (node.AttributeType != kTypeData) {
            continue;
        }
        const auto sector = FindRecordSector(node.RecordNumber);
        if (!sector) {
            continue;
        }
        if (!ReadFileRecord(record, *sector)) {
            return false;
        }
        visit(record);
    }
    return true;
}

// Hands over each record that may hold a part of the entry's data. Gives false where one fails its check.
bool VisitDataRecords(const CatalogueItem& entry, const RecordVisitor& visit) try {
    RecordBuffer record(Engine.VolumeParams.FileRecordBytes);
    if (!ReadFileRecord(record, entry.RecordSector)) {
        return false;
    }
    if (HasAttributeList(record)) {
        return VisitListedRecords(record, visit);
    }
    visit(record);
    return true;
} catch (const std::exception&) {
    return false;
}

std::optional<Attribute> FindData(ConstBytes record) {
    for (AttributeWalk walk(record); walk.Valid(); walk.Next()) {
        const Attribute attribute = walk.Current();
        if (attribute.Type() == kTypeEnd) {
            break;
        }
        if (attribute.Type() == kTypeData && !attribute.Named()) {
            return attribute;
        }
    }
    return std::nullopt;
}

// Bytes that the data in one record takes, at most `limit`.
std::uint64_t BytesHeld(ConstBytes record, std::uint64_t limit) {
    const std::optional<Attribute> data = FindData(record);
    if (!data || data->NonResident() == 0) {
        return data ? data->Value().size() : 0;
    }
    std::vector<MftExtent> runs;
    DecodeRunList(record, data->RunListStart(), runs);
    std::uint64_t bytes = 0;
    for (const MftExtent& run : runs) {
        if (bytes >= limit) {
            break;
        }
        bytes += run.StartCluster == 0 ? 0 : std::uint64_t{run.Clusters} * Engine.VolumeParams.ClusterBytes;
    }
    return std::min(bytes, limit);
}

} // namespace

bool ReadEntryContent(const CatalogueItem& entry, File& outputHandle, MissingData& missing) {
    return VisitDataRecords(
        entry, [&](ConstBytes record) { WriteDataAttribute(entry, outputHandle, record, missing); });
}

std::uint64_t ContentNeed(const CatalogueItem& entry) {
    const std::uint64_t limit = std::min(entry.Size, VolumeByteLimit());
    std::uint64_t need = 0;
    VisitDataRecords(entry,
                     [&](ConstBytes record) { need = std::min(limit, need + BytesHeld(record, limit)); });
    return need;
}

void WriteDataAttribute(const CatalogueItem& entry, File& outputHandle, ConstBytes record,
                        MissingData& missing) {
    const std::optional<Attribute> data = FindData(record);
    if (!data) {
        return;
    }
    if (data->NonResident() == 0) {
        if (data->ValueLength() != 0) {
            WriteCatalogue(outputHandle, data->Value());
        }
        return;
    }
    std::vector<MftExtent> runs;
    DecodeRunList(record, data->RunListStart(), runs);
    if (data->Flags() == kFlagsCompressed) {
        WriteCompressedRuns(entry, outputHandle, runs, data->CompressionUnit(), missing);
    } else {
        WriteRuns(entry, outputHandle, runs, missing);
    }
}

bool ReadAttributeList(ConstBytes record, std::vector<AttributeListNode>& nodes) {
    AttributeWalk walk(record);
    walk.Next();
    const Attribute list = walk.Current();
    if (list.Type() != kTypeAttributeList) {
        return false;
    }
    WalkAttributeList(record, list, NodeCollector(nodes), [](const ReadOutcome&) { return true; });
    return true;
}

namespace {

// Reads the next clusters of a run and writes what the entry's size leaves of them.
void WritePiece(const CatalogueItem& entry, File& outputHandle, Bytes buffer, std::uint64_t sector,
                MissingData& missing) {
    const ReadOutcome outcome = ReadSectorsCleared(buffer, sector);
    const Bytes piece = buffer.first(
        static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), entry.Size - Engine.BytesWritten)));
    missing.AddMissingOf(outcome, sector, piece.size());
    Engine.BytesWritten += piece.size();
    WriteCatalogue(outputHandle, piece);
    ReportContentProgress(entry.Size);
}

} // namespace

void WriteRuns(const CatalogueItem& entry, File& outputHandle, const std::vector<MftExtent>& runs,
               MissingData& missing) {
    const VolumeParams& volume = Engine.VolumeParams;
    const std::uint64_t end = std::min(entry.Size, VolumeByteLimit());
    if (volume.ClusterBytes == 0 || volume.ClusterBytes > kMaxClusterBytes) {
        return;
    }
    const std::uint32_t perPiece = ClustersPerPiece();
    std::vector<std::uint8_t> buffer(std::size_t{perPiece} * volume.ClusterBytes);
    for (const MftExtent& run : runs) {
        std::uint64_t sector = SectorOfCluster(run.StartCluster);
        std::uint32_t left = run.StartCluster == 0 ? 0 : run.Clusters; // a hole is passed over
        while (left > 0 && Engine.BytesWritten < end && !ContentStopped()) {
            const std::uint32_t clusters = std::min(left, perPiece);
            WritePiece(entry, outputHandle, Bytes(buffer).first(std::size_t{clusters} * volume.ClusterBytes),
                       sector, missing);
            left -= clusters;
            sector += std::uint64_t{clusters} * volume.SectorsPerCluster;
        }
    }
}

} // namespace thntfs
