#include "engine/FoundRecords.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::size_t kMaxStretches = 1U << 20U;
constexpr std::size_t kMaxCopies = 16;
constexpr std::size_t kMaxLooks = 65536; // at stretches that might hold a number

} // namespace

void FoundRecords::Note(std::uint32_t number, std::uint64_t sector, std::uint32_t sectorsPerRecord) {
    sectorsPerRecord_ = sectorsPerRecord;
    if (open_) {
        Stretch& last = stretches_.back();
        if (last.End() == number && last.Sector + std::uint64_t{last.Count} * sectorsPerRecord == sector) {
            ++last.Count;
            reach_.clear();
            return;
        }
    }
    if (stretches_.size() < kMaxStretches) {
        stretches_.push_back({sector, number, 1});
        reach_.clear();
        open_ = true;
    }
}

void FoundRecords::Sort() {
    open_ = false;
    std::stable_sort(stretches_.begin(), stretches_.end(),
                     [](const Stretch& a, const Stretch& b) { return a.Number < b.Number; });
    std::uint64_t reach = 0;
    for (const Stretch& stretch : stretches_) {
        reach = std::max(reach, stretch.End());
        reach_.push_back(reach);
    }
}

std::vector<std::uint64_t> FoundRecords::SectorsOf(std::uint32_t number) {
    if (reach_.empty()) {
        Sort();
    }
    const auto behind = std::upper_bound(
        stretches_.begin(), stretches_.end(), number,
        [](std::uint32_t wanted, const Stretch& stretch) { return wanted < stretch.Number; });
    std::vector<std::uint64_t> sectors;
    std::size_t looks = 0;
    for (auto i = static_cast<std::size_t>(behind - stretches_.begin());
         i > 0 && reach_[i - 1] > number && sectors.size() < kMaxCopies && looks < kMaxLooks; --i, ++looks) {
        const Stretch& stretch = stretches_[i - 1];
        if (stretch.End() > number) {
            sectors.push_back(stretch.Sector + std::uint64_t{number - stretch.Number} * sectorsPerRecord_);
        }
    }
    return sectors;
}

} // namespace thntfs
