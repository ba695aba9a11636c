#include "engine/AttributeList.h"

#include "engine/EngineState.h"
#include "engine/SectorReader.h"

#include <algorithm>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint16_t kMinEntryBytes = 24;
constexpr std::uint32_t kMaxListBytes = 256U << 10U;

} // namespace

AttributeListNode MakeListNode(const AttributeListEntry& entry) {
    return {entry.Type(), entry.StartVcn(), entry.RecordNumber(), entry.AttributeId()};
}

void WalkListEntries(ConstBytes bytes, const ListVisitor& visit) {
    while (!bytes.empty()) {
        const AttributeListEntry entry(bytes);
        if (visit(entry) == ListStep::End || entry.Length() < kMinEntryBytes) {
            return;
        }
        bytes = Part(bytes, entry.Length(), bytes.size());
    }
}

void WalkResidentList(ConstBytes record, const Attribute& list, const ListVisitor& visit) {
    if (list.ValueOffset() < list.Length()) {
        WalkListEntries(Part(record, list.ValueStart(), list.Length() - list.ValueOffset()), visit);
    }
}

void WalkListClusters(const std::vector<MftExtent>& runs, const ListClusterVisitor& visit) {
    const std::uint32_t clusterBytes = std::min(Engine.VolumeParams.ClusterBytes, kMaxListBytes);
    if (clusterBytes == 0) {
        return;
    }
    std::uint32_t clustersLeft = kMaxListBytes / clusterBytes;
    std::vector<std::uint8_t> cluster(clusterBytes);
    for (const MftExtent& run : runs) {
        for (std::uint64_t i = 0; i < run.Clusters && clustersLeft > 0; ++i, --clustersLeft) {
            const ReadOutcome outcome = ReadSectorsCleared(cluster, SectorOfCluster(run.StartCluster + i));
            if (!visit(cluster, outcome)) {
                return;
            }
        }
    }
}

} // namespace thntfs
