#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace thntfs {

/// A set of a volume's clusters: a bit each, in pages that are taken when they are touched. A page of which
/// all clusters are in the set takes no memory.
class ClusterSet {
public:
    static constexpr std::uint64_t kPageClusters = 32768;
    using Page = std::array<std::uint64_t, kPageClusters / 64>;

    /// `clusters`: of the volume; no other can be in the set.
    explicit ClusterSet(std::uint64_t clusters)
        : clusters_(clusters) {}

    /// Puts a range, which isn't empty, into the set; what lies behind the volume's end is left. What many
    /// ranges add over and over ends at some point: files of a volume share no clusters. So it does where
    /// memory ends: the set then lacks some.
    void Add(std::uint64_t first, std::uint64_t count) {
        const std::uint64_t inPage = first % kPageClusters;
        if (first / kPageClusters == lastPage_ && inPage % 64 + count <= 64 && first + count <= clusters_) {
            (*last_)[inPage / 64] |= (~std::uint64_t{0} >> (64 - count)) << inPage % 64;
        } else {
            AddPages(first, count);
        }
    }

    /// Puts the bits of a page over those in `bits`: clusters page * kPageClusters and those behind it.
    void MergePage(std::uint64_t page, Page& bits) const;

private:
    using PagePlace = std::uint32_t; ///< in pages_, plus one

    static constexpr PagePlace kFullPage = ~PagePlace{0};
    static constexpr std::size_t kMaxPages = 65536; ///< 256 MiB

    void AddPages(std::uint64_t first, std::uint64_t count);
    void AddInPage(std::uint64_t page, std::uint64_t first, std::uint64_t count);
    Page* PageFor(PagePlace& place);

    std::uint64_t clusters_;
    std::uint64_t added_ = 0;
    std::vector<PagePlace> places_; ///< by page, up to the highest that was touched; 0 for an empty one
    std::vector<std::unique_ptr<Page>> pages_;

    // The page used last, which is most often used next.
    std::uint64_t lastPage_ = ~std::uint64_t{0};
    Page* last_ = nullptr;
};

/// Sets `count` bits from one on.
void SetBits(ClusterSet::Page& page, std::uint64_t first, std::uint64_t count);

/// How many of `count` bits from one on are set.
std::uint64_t CountBits(const ClusterSet::Page& page, std::uint64_t first, std::uint64_t count);

} // namespace thntfs
