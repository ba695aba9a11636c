#include "scans/UsedClusters.h"

#include <algorithm>

namespace thntfs {

namespace {

// Where live files stand on clusters that the bitmap calls free, more of them than not, it isn't this
// volume's bitmap, or its sectors are zeros by now.
bool IsBelievable(const ClusterSet::Page& live, const ClusterSet::Page& bitmap) {
    ClusterSet::Page both{};
    std::transform(live.begin(), live.end(), bitmap.begin(), both.begin(),
                   [](std::uint64_t a, std::uint64_t b) { return a & b; });
    const std::uint64_t agreed = CountBits(both, 0, ClusterSet::kPageClusters);
    return 2 * agreed >= CountBits(live, 0, ClusterSet::kPageClusters);
}

} // namespace

FreeSpace UsedClusters::FreeSectors(std::uint64_t first, std::uint64_t end) {
    const std::uint64_t sectors = space_.SectorsPerCluster;
    const std::uint64_t firstCluster = first / sectors;
    const std::uint64_t endCluster = (end + sectors - 1) / sectors;
    FreeSpace space = FreeClusters(firstCluster, endCluster);
    space.Sectors *= sectors;
    // Files of a volume with smaller clusters may begin and end within one of this volume's.
    if (const std::uint64_t before = first - firstCluster * sectors; before != 0) {
        space.Sectors -= FreeClusters(firstCluster, firstCluster + 1).Sectors * before;
    }
    if (const std::uint64_t behind = endCluster * sectors - end; behind != 0) {
        space.Sectors -= FreeClusters(endCluster - 1, endCluster).Sectors * behind;
    }
    return space;
}

// In clusters.
FreeSpace UsedClusters::FreeClusters(std::uint64_t first, std::uint64_t end) {
    FreeSpace space;
    while (first < end) {
        LoadPage(first / ClusterSet::kPageClusters);
        const std::uint64_t inPage = first % ClusterSet::kPageClusters;
        const std::uint64_t count = std::min(end - first, ClusterSet::kPageClusters - inPage);
        const std::uint64_t free = count - CountBits(used_, inPage, count);
        if (known_ || free == 0) {
            space.Sectors += free;
        } else {
            space.Known = false;
        }
        first += count;
    }
    return space;
}

void UsedClusters::LoadPage(std::uint64_t page) {
    if (page == page_) {
        return;
    }
    page_ = page;
    used_.fill(0);
    const std::uint64_t left = space_.Clusters - std::min(space_.Clusters, page * ClusterSet::kPageClusters);
    ClusterSet::Page live{};
    live_.MergePage(page, live);
    known_ =
        by_ == UsedBy::Set || (bitmap_.ReadPage(page, std::min(left, ClusterSet::kPageClusters), used_) &&
                               IsBelievable(live, used_));
    if (!known_) {
        used_.fill(0);
    }
    live_.MergePage(page, used_);
}

} // namespace thntfs
