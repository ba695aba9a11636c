#include "scans/ClaimSweep.h"

#include "catalogue/Conditions.h"
#include "scans/UsedClusters.h"

#include <algorithm>
#include <numeric>

namespace thntfs {

ClaimSweep::ClaimSweep(const std::deque<DeletedFile>& files, UsedClusters& used)
    : files_(files)
    , used_(used)
    , good_(files.size())
    , uncertain_(files.size())
    , owner_(files.size()) {
    std::iota(owner_.begin(), owner_.end(), 0U);
}

void ClaimSweep::Run(std::vector<ClaimedRun>& runs) {
    std::sort(runs.begin(), runs.end(), [](const ClaimedRun& a, const ClaimedRun& b) {
        return a.First != b.First ? a.First < b.First : a.File < b.File;
    });
    for (const ClaimedRun& run : runs) {
        AdvanceTo(run.First);
        Add({run.First + run.Count, run.File});
    }
    AdvanceTo(~std::uint64_t{0});
}

void ClaimSweep::Add(const Active& run) {
    active_.push_back(run);
    std::push_heap(active_.begin(), active_.end(),
                   [this](const Active& a, const Active& b) { return IsEarlier(a, b); });
}

ClaimSweep::Active ClaimSweep::TakeTop() {
    std::pop_heap(active_.begin(), active_.end(),
                  [this](const Active& a, const Active& b) { return IsEarlier(a, b); });
    const Active top = active_.back();
    active_.pop_back();
    return top;
}

// Between equals the one that goes on longest comes first: no stretch is shorter than it must be.
bool ClaimSweep::IsEarlier(const Active& a, const Active& b) const {
    if (files_[b.File].IsLaterThan(files_[a.File])) {
        return true;
    }
    return !files_[a.File].IsLaterThan(files_[b.File]) && a.End < b.End;
}

// False where nothing goes on.
bool ClaimSweep::DropEnded() {
    while (!active_.empty() && active_.front().End <= at_) {
        TakeTop();
    }
    return !active_.empty();
}

void ClaimSweep::AdvanceTo(std::uint64_t sector) {
    while (at_ < sector && DropEnded()) {
        const Active top = TakeTop();
        while (DropEnded() && IsSameFile(top.File, active_.front().File)) {
            JoinCopies(top.File, TakeTop().File);
        }
        const bool tied = !active_.empty() && AreTied(top.File, active_.front().File);
        const std::uint64_t end = std::min({top.End, sector, tied ? active_.front().End : top.End});
        if (!tied) {
            GiveTo(Owner(top.File), end);
        }
        at_ = end;
        if (top.End > at_) {
            Add(top);
        }
    }
    at_ = sector;
}

std::uint32_t ClaimSweep::Owner(std::uint32_t file) {
    while (owner_[file] != file) {
        owner_[file] = owner_[owner_[file]];
        file = owner_[file];
    }
    return file;
}

void ClaimSweep::JoinCopies(std::uint32_t a, std::uint32_t b) {
    const std::uint32_t kept = Owner(a);
    if (const std::uint32_t other = Owner(b); other != kept) {
        owner_[other] = kept;
        good_[kept] += good_[other];
        uncertain_[kept] = uncertain_[kept] || uncertain_[other];
    }
}

void ClaimSweep::GiveTo(std::uint32_t file, std::uint64_t end) {
    const FreeSpace space = used_.FreeSectors(at_, end);
    good_[file] += space.Sectors;
    uncertain_[file] = uncertain_[file] || !space.Known;
}

bool ClaimSweep::AreTied(std::uint32_t a, std::uint32_t b) const {
    return !files_[a].IsLaterThan(files_[b]) && !files_[b].IsLaterThan(files_[a]);
}

// A scan of the whole volume may meet copies of one record.
bool ClaimSweep::IsSameFile(std::uint32_t a, std::uint32_t b) const {
    return a == b || (AreTied(a, b) && files_[a].RecordNumber != 0 &&
                      files_[a].RecordNumber == files_[b].RecordNumber &&
                      files_[a].Sequence == files_[b].Sequence && files_[a].Sectors == files_[b].Sectors);
}

std::uint8_t ClaimSweep::ConditionOfFile(std::uint32_t file) {
    const std::uint32_t owner = Owner(file);
    return uncertain_[owner] ? kUnknown : ConditionByte(good_[owner], files_[owner].Sectors);
}

} // namespace thntfs
