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

using RecordVisitor = std::function<int(ConstBytes record)>;

// The pieces of the data come one behind the other in the order of the list.
int VisitListedRecords(RecordBuffer& record, const RecordVisitor& visit) {
    std::vector<AttributeListNode> nodes;
    ReadAttributeList(record, nodes);
    int result = 1;
    for (const AttributeListNode& node : nodes) {
        if (node.AttributeType != kTypeData) {
            continue;
        }
        const auto sector = FindRecordSector(node.RecordNumber);
        if (!sector) {
            continue;
        }
        if (!ReadFileRecord(record, *sector)) {
            return 0;
        }
        result = visit(record);
    }
    return result;
}

// Hands over each record that may hold a part of the entry's data.
int VisitDataRecords(const CatalogueItem& entry, const RecordVisitor& visit) try {
    RecordBuffer record(Engine.VolumeParams.FileRecordBytes);
    if (!ReadFileRecord(record, entry.RecordSector)) {
        return 0;
    }
    return HasAttributeList(record) ? VisitListedRecords(record, visit) : visit(record);
} catch (const std::exception&) {
    return 0;
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

int ReadEntryContent(const CatalogueItem& entry, File& outputHandle) {
    return VisitDataRecords(
        entry, [&](ConstBytes record) { return WriteDataAttribute(entry, outputHandle, record); });
}

std::uint64_t ContentNeed(const CatalogueItem& entry) {
    const std::uint64_t limit = std::min(entry.Size, VolumeByteLimit());
    std::uint64_t need = 0;
    VisitDataRecords(entry, [&](ConstBytes record) {
        need = std::min(limit, need + BytesHeld(record, limit));
        return 1;
    });
    return need;
}

int WriteDataAttribute(const CatalogueItem& entry, File& outputHandle, ConstBytes record) {
    const std::optional<Attribute> data = FindData(record);
    if (!data) {
        return 1;
    }
    if (data->NonResident() == 0) {
        return data->ValueLength() != 0 ? WriteCatalogue(outputHandle, data->Value()) : 1;
    }
    std::vector<MftExtent> runs;
    DecodeRunList(record, data->RunListStart(), runs);
    return data->Flags() == kFlagsCompressed
               ? WriteCompressedRuns(entry, outputHandle, runs, data->CompressionUnit())
               : WriteRuns(entry, outputHandle, runs);
}

int ReadAttributeList(ConstBytes record, std::vector<AttributeListNode>& nodes) {
    AttributeWalk walk(record);
    walk.Next();
    const Attribute list = walk.Current();
    if (list.Type() != kTypeAttributeList) {
        return 0;
    }
    WalkAttributeList(record, list, NodeCollector(nodes), [](const ReadOutcome&) { return true; });
    return 1;
}

int WriteRuns(const CatalogueItem& entry, File& outputHandle, const std::vector<MftExtent>& runs) {
    const std::uint64_t clusterBytes = Engine.VolumeParams.ClusterBytes;
    const std::uint64_t end = std::min(entry.Size, VolumeByteLimit());
    if (clusterBytes == 0 || clusterBytes > kMaxClusterBytes) {
        return 1;
    }
    const std::uint32_t perPiece = ClustersPerPiece();
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(perPiece * clusterBytes));
    for (const MftExtent& run : runs) {
        if (run.StartCluster == 0) {
            continue; // a hole
        }
        std::uint64_t sector = SectorOfCluster(run.StartCluster);
        std::uint32_t left = run.Clusters;
        while (left > 0 && Engine.BytesWritten < end && !ContentStopped()) {
            const std::uint32_t clusters = std::min(left, perPiece);
            left -= clusters;
            Bytes piece(buffer.data(), static_cast<std::size_t>(clusters * clusterBytes));
            const ReadOutcome outcome = ReadSectorsCleared(piece, sector);
            piece = piece.first(static_cast<std::size_t>(
                std::min<std::uint64_t>(piece.size(), entry.Size - Engine.BytesWritten)));
            NoteMissingData(outcome, sector, piece.size());
            sector += std::uint64_t{clusters} * Engine.VolumeParams.SectorsPerCluster;
            Engine.BytesWritten += piece.size();
            WriteCatalogue(outputHandle, piece);
            ReportContentProgress(entry.Size);
        }
    }
    return 1;
}

} // namespace thntfs
