#pragma once

#include "scans/DeletedFiles.h"

#include <cstdint>
#include <deque>
#include <vector>

namespace thntfs {

class UsedClusters;

/// Goes along the volume and gives each piece of it that deleted files claim to the one that had it last,
/// unless it is in use now. What several had last, at the same time, nobody gets.
class ClaimSweep {
public:
    /// Both must outlive it.
    ClaimSweep(const std::deque<DeletedFile>& files, UsedClusters& used);

    /// Sorts the runs and goes along them. Once. Passes CUserException on.
    void Run(std::vector<ClaimedRun>& runs);

    /// As SetCondition takes it.
    std::uint8_t ConditionOfFile(std::uint32_t file);

private:
    struct Active {
        std::uint64_t End;
        std::uint32_t File;
    };

    void Add(const Active& run);
    void AdvanceTo(std::uint64_t sector);
    void GiveTo(std::uint32_t file, std::uint64_t end);
    Active TakeTop();
    bool DropEnded();
    std::uint32_t Owner(std::uint32_t file);
    void JoinCopies(std::uint32_t a, std::uint32_t b);
    [[nodiscard]] bool IsEarlier(const Active& a, const Active& b) const;
    [[nodiscard]] bool IsSameFile(std::uint32_t a, std::uint32_t b) const;
    [[nodiscard]] bool AreTied(std::uint32_t a, std::uint32_t b) const;

    const std::deque<DeletedFile>& files_;
    UsedClusters& used_;
    std::vector<std::uint64_t> good_;  ///< sectors that a file still has
    std::vector<bool> uncertain_;      ///< of a file, whether there may be more or less
    std::vector<std::uint32_t> owner_; ///< of a copy of a file's record, another one; else itself
    std::vector<Active> active_;       ///< a heap, the latest file on top; may hold runs that have ended
    std::uint64_t at_ = 0;
};

} // namespace thntfs
