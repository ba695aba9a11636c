#include "disktools/CopyMap.h"

#include <algorithm>
#include <iterator>

namespace thntfs {

CopyMap::CopyMap(std::uint64_t totalBytes, std::size_t maxAreas)
    : totalBytes_(totalBytes)
    , maxAreas_(maxAreas) {
    if (totalBytes_ != 0) {
        starts_.emplace(0, AreaState::Unread);
    }
}

void CopyMap::Mark(std::uint64_t first, std::uint64_t size, AreaState state) {
    if (first >= totalBytes_ || size == 0) {
        return;
    }
    const std::uint64_t end = first + std::min(size, totalBytes_ - first);
    const auto begin = SplitAt(first);
    const auto next = SplitAt(end);
    starts_.erase(std::next(begin), next);
    begin->second = state;
    JoinWithPrevious(next);
    JoinWithPrevious(begin);
    if (starts_.size() > maxAreas_) {
        Thin();
    }
}

std::optional<Area> CopyMap::Find(AreaState state, std::uint64_t from) const {
    if (from >= totalBytes_) {
        return std::nullopt;
    }
    auto start = std::prev(starts_.upper_bound(from));
    while (start != starts_.end() && start->second != state) {
        ++start;
    }
    if (start == starts_.end()) {
        return std::nullopt;
    }
    Area area = AreaAt(start);
    const std::uint64_t cut = std::max(area.First, from);
    area.Size -= cut - area.First;
    area.First = cut;
    return area;
}

std::uint64_t CopyMap::BytesOf(AreaState state) const {
    std::uint64_t bytes = 0;
    ForEach([&](const Area& area) { bytes += area.State == state ? area.Size : 0; });
    return bytes;
}

Area CopyMap::AreaAt(Starts::const_iterator start) const {
    const auto next = std::next(start);
    const std::uint64_t end = next == starts_.end() ? totalBytes_ : next->first;
    return {start->first, end - start->first, start->second};
}

/// The area that begins at a place, after it has been cut off there if need be; none at the end of the
/// source.
CopyMap::Starts::iterator CopyMap::SplitAt(std::uint64_t place) {
    if (place >= totalBytes_) {
        return starts_.end();
    }
    const auto after = starts_.upper_bound(place);
    const auto holder = std::prev(after);
    return holder->first == place ? holder : starts_.emplace_hint(after, place, holder->second);
}

void CopyMap::JoinWithPrevious(Starts::iterator start) {
    if (start != starts_.end() && start != starts_.begin() && std::prev(start)->second == start->second) {
        starts_.erase(start);
    }
}

void CopyMap::Thin() {
    for (std::uint64_t bytes = 512; starts_.size() > maxAreas_ / 2 && bytes < totalBytes_; bytes *= 2) {
        DropReadUpTo(bytes);
    }
}

void CopyMap::DropReadUpTo(std::uint64_t bytes) {
    for (auto start = starts_.begin(); start != starts_.end();) {
        const auto next = std::next(start);
        const bool between = start != starts_.begin() && next != starts_.end() &&
                             std::prev(start)->second == AreaState::Bad && next->second == AreaState::Bad;
        if (between && start->second == AreaState::Read && AreaAt(start).Size <= bytes) {
            starts_.erase(start);
            start = starts_.erase(next);
        } else {
            start = next;
        }
    }
}

} // namespace thntfs
