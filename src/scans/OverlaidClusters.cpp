#include "scans/OverlaidClusters.h"

#include "engine/EngineState.h"
#include "engine/RecordTable.h"
#include "scans/VolumeBitmap.h"

#include <algorithm>
#include <utility>

namespace thntfs {

namespace {

/// Takes another volume into use, as long as it lives.
class VolumeSwap {
public:
    explicit VolumeSwap(const PartitionCandidate& other)
        : number_(Engine.VolumeInWork)
        , volume_(std::move(Engine.VolumeParams))
        , table_(std::move(Engine.Table))
        , found_(std::move(Engine.Found))
        , tableBytes_(Engine.TableBytes)
        , tableCut_(Engine.TableCut)
        , overlaidBy_(Engine.OverlaidBy) {
        LoadVolumeParams(other);
        Engine.VolumeParams.MftExtents.clear();
    }
    ~VolumeSwap() {
        Engine.VolumeParams = std::move(volume_);
        Engine.Table = std::move(table_);
        Engine.Found = std::move(found_);
        Engine.TableBytes = tableBytes_;
        Engine.TableCut = tableCut_;
        Engine.OverlaidBy = overlaidBy_;
        Engine.VolumeInWork = number_;
    }
    VolumeSwap(const VolumeSwap&) = delete;
    VolumeSwap& operator=(const VolumeSwap&) = delete;

private:
    std::uint64_t number_;
    VolumeParams volume_;
    std::shared_ptr<TableMap> table_;
    std::shared_ptr<FoundRecords> found_;
    std::uint64_t tableBytes_;
    bool tableCut_;
    std::optional<PartitionCandidate> overlaidBy_;
};

bool IsSet(const ClusterSet::Page& page, std::uint64_t bit) { return (page[bit / 64] >> bit % 64 & 1U) != 0; }

/// Puts the clusters that are set in a page of the other volume's bitmap into a set of those of the volume in
/// work. Both volumes begin at one sector.
void AddPage(ClusterSet& set, const ClusterSet::Page& page, std::uint64_t firstCluster,
             std::uint64_t sectorsThere, std::uint64_t sectorsHere) {
    for (std::uint64_t bit = 0; bit < ClusterSet::kPageClusters;) {
        const std::uint64_t begin = bit;
        while (bit < ClusterSet::kPageClusters && IsSet(page, bit)) {
            ++bit;
        }
        if (bit != begin) {
            const std::uint64_t first = (firstCluster + begin) * sectorsThere / sectorsHere;
            const std::uint64_t end = ((firstCluster + bit) * sectorsThere + sectorsHere - 1) / sectorsHere;
            set.Add(first, end - first);
        } else {
            ++bit;
        }
    }
}

} // namespace

std::unique_ptr<ClusterSet> OverlaidClusters(const ClaimSpace& space) {
    if (!Engine.OverlaidBy || space.SectorsPerCluster == 0) {
        return nullptr;
    }
    const VolumeSwap swap(*Engine.OverlaidBy);
    const ClaimSpace there = ClaimSpaceOfVolume();
    const VolumeBitmap bitmap;
    auto set = std::make_unique<ClusterSet>(space.Clusters);
    for (std::uint64_t first = 0; first < there.Clusters; first += ClusterSet::kPageClusters) {
        ClusterSet::Page page{};
        const std::uint64_t count = std::min(there.Clusters - first, ClusterSet::kPageClusters);
        if (!bitmap.ReadPage(first / ClusterSet::kPageClusters, count, page)) {
            return nullptr;
        }
        AddPage(*set, page, first, there.SectorsPerCluster, space.SectorsPerCluster);
    }
    return there.Clusters == 0 ? nullptr : std::move(set);
}

} // namespace thntfs
