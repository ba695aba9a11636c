#include "engine/RunMap.h"

#include "engine/RunListCursor.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::size_t kMaxRuns = 2U << 20U; // more than an attribute list of the largest size leads to

bool GoesOn(const MapRun& run, const MapRun& next) {
    return run.End() == next.Vcn && run.Hole == next.Hole && (run.Hole || run.Lcn + run.Clusters == next.Lcn);
}

void AppendJoined(std::vector<MapRun>& runs, const MapRun& run) {
    if (!runs.empty() && GoesOn(runs.back(), run)) {
        runs.back().Clusters += run.Clusters;
    } else {
        runs.push_back(run);
    }
}

} // namespace

bool RunMap::Add(ConstBytes runList, std::uint64_t firstVcn, std::uint64_t endVcn) {
    RunListCursor cursor(runList, firstVcn, endVcn);
    std::vector<MapRun> piece;
    for (MapRun run; cursor.Next(run);) {
        AppendJoined(piece, run);
    }
    return Insert(piece) && cursor.Sound();
}

bool RunMap::Insert(const std::vector<MapRun>& piece) {
    if (piece.empty()) {
        return true;
    }
    const auto next = std::upper_bound(runs_.begin(), runs_.end(), piece.front().Vcn,
                                       [](std::uint64_t vcn, const MapRun& run) { return vcn < run.Vcn; });
    const bool overlaps = (next != runs_.begin() && std::prev(next)->End() > piece.front().Vcn) ||
                          (next != runs_.end() && next->Vcn < piece.back().End());
    if (overlaps || piece.size() > kMaxRuns - std::min(kMaxRuns, runs_.size())) {
        return false;
    }
    runs_.insert(next, piece.begin(), piece.end());
    return true;
}

void RunMap::Append(std::uint64_t clusters, std::uint64_t lcn) {
    const std::uint64_t vcn = EndVcn();
    if (clusters != 0 && clusters <= kVcnLimit - vcn && FitsVolume(lcn, clusters)) {
        AppendJoined(runs_, {vcn, clusters, lcn, false});
    }
}

const MapRun* RunMap::FindFrom(std::uint64_t vcn) const {
    const auto found =
        std::upper_bound(runs_.begin(), runs_.end(), vcn,
                         [](std::uint64_t wanted, const MapRun& run) { return wanted < run.End(); });
    return found == runs_.end() ? nullptr : &*found;
}

const MapRun* RunMap::Find(std::uint64_t vcn) const {
    const MapRun* run = FindFrom(vcn);
    return run != nullptr && run->Vcn <= vcn ? run : nullptr;
}

const MapRun* RunMap::FindAllocated(std::uint64_t vcn) const {
    const MapRun* run = FindFrom(vcn);
    const MapRun* end = runs_.data() + runs_.size();
    while (run != nullptr && run->Hole) {
        run = run + 1 == end ? nullptr : run + 1;
    }
    return run;
}

void RunMap::CutToVolume(std::uint64_t first, std::uint64_t end,
                         const std::function<void(std::uint64_t, std::uint64_t)>& lost) {
    std::uint64_t left = end;
    for (MapRun& run : runs_) {
        if (run.Hole) {
            continue;
        }
        if (const std::uint64_t before = std::min(run.Clusters, first - std::min(first, run.Lcn));
            before != 0) {
            lost(run.Vcn, before);
            run = {run.Vcn + before, run.Clusters - before, run.Lcn + before, false};
        }
        const std::uint64_t kept = std::min({run.Clusters, end - std::min(end, run.Lcn), left});
        if (kept < run.Clusters) {
            lost(run.Vcn + kept, run.Clusters - kept);
        }
        run.Clusters = kept;
        left -= kept;
    }
    std::erase_if(runs_, [](const MapRun& run) { return run.Clusters == 0; });
}

std::uint64_t RunMap::AllocatedClusters() const {
    std::uint64_t clusters = 0;
    for (const MapRun& run : runs_) {
        clusters += run.Hole ? 0 : run.Clusters;
    }
    return clusters;
}

} // namespace thntfs
