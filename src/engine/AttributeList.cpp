#include "engine/AttributeList.h"

#include "engine/EngineState.h"
#include "engine/RunList.h"
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

void WalkListRuns(const std::vector<MftExtent>& runs, const ListVisitor& visit,
                  const ClusterVisitor& afterCluster) {
    const std::uint32_t clusterBytes = std::min(Engine.VolumeParams.ClusterBytes, kMaxListBytes);
    if (clusterBytes == 0) {
        return;
    }
    std::uint32_t clustersLeft = kMaxListBytes / clusterBytes;
    std::vector<std::uint8_t> cluster(clusterBytes);
    for (const MftExtent& run : runs) {
        for (std::uint64_t i = 0; i < run.Clusters && clustersLeft > 0; ++i, --clustersLeft) {
            const ReadOutcome outcome = ReadSectorsCleared(cluster, SectorOfCluster(run.StartCluster + i));
            WalkListEntries(cluster, visit);
            if (!afterCluster(outcome)) {
                return;
            }
        }
    }
}

void WalkAttributeList(ConstBytes record, const Attribute& list, const ListVisitor& visit,
                       const ClusterVisitor& afterCluster) {
    if (list.NonResident() == 0) {
        WalkResidentList(record, list, visit);
        return;
    }
    std::vector<MftExtent> runs;
    DecodeRunList(record, list.RunListStart(), runs);
    WalkListRuns(runs, visit, afterCluster);
}

} // namespace thntfs
