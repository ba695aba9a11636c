#include "scans/ClusterSet.h"

#include <algorithm>
#include <bit>
#include <new>

namespace thntfs {

namespace {

constexpr std::uint64_t kWordBits = 64;
constexpr std::uint64_t kMaxTimesAdded = 8; // each cluster, on the average

// Calls visit(word, mask) for each word that a range of bits touches.
template <typename Visit>
void VisitWords(std::uint64_t first, std::uint64_t count, Visit visit) {
    while (count > 0) {
        const std::uint64_t inWord = first % kWordBits;
        const std::uint64_t bits = std::min(count, kWordBits - inWord);
        visit(first / kWordBits, (~std::uint64_t{0} >> (kWordBits - bits)) << inWord);
        first += bits;
        count -= bits;
    }
}

} // namespace

void SetBits(ClusterSet::Page& page, std::uint64_t first, std::uint64_t count) {
    VisitWords(first, count, [&page](std::uint64_t word, std::uint64_t mask) { page[word] |= mask; });
}

std::uint64_t CountBits(const ClusterSet::Page& page, std::uint64_t first, std::uint64_t count) {
    std::uint64_t set = 0;
    VisitWords(first, count, [&page, &set](std::uint64_t word, std::uint64_t mask) {
        set += static_cast<std::uint64_t>(std::popcount(page[word] & mask));
    });
    return set;
}

void ClusterSet::AddPages(std::uint64_t first, std::uint64_t count) try {
    if (first >= clusters_ || added_ / kMaxTimesAdded > clusters_) {
        return;
    }
    count = std::min(count, clusters_ - first);
    added_ += count;
    while (count > 0) {
        const std::uint64_t inPage = first % kPageClusters;
        const std::uint64_t now = std::min(count, kPageClusters - inPage);
        AddInPage(first / kPageClusters, inPage, now);
        first += now;
        count -= now;
    }
} catch (const std::bad_alloc&) {
    // The set lacks what there was no memory for.
}

void ClusterSet::AddInPage(std::uint64_t page, std::uint64_t first, std::uint64_t count) {
    if (page >= places_.size()) {
        places_.resize(page + 1, 0);
    }
    PagePlace& place = places_[page];
    if (place == kFullPage) {
        return;
    }
    if (count == kPageClusters) {
        if (place != 0) {
            pages_[place - 1].reset();
        }
        place = kFullPage;
        lastPage_ = lastPage_ == page ? ~std::uint64_t{0} : lastPage_;
    } else if (Page* bits = PageFor(place)) {
        SetBits(*bits, first, count);
        lastPage_ = page;
        last_ = bits;
    }
}

ClusterSet::Page* ClusterSet::PageFor(PagePlace& place) {
    if (place == 0) {
        if (pages_.size() == kMaxPages) {
            return nullptr;
        }
        pages_.push_back(std::make_unique<Page>());
        place = static_cast<PagePlace>(pages_.size());
    }
    return pages_[place - 1].get();
}

void ClusterSet::MergePage(std::uint64_t page, Page& bits) const {
    const PagePlace place = page < places_.size() ? places_[page] : 0;
    if (place == kFullPage) {
        bits.fill(~std::uint64_t{0});
    } else if (place != 0) {
        const Page& own = *pages_[place - 1];
        std::transform(own.begin(), own.end(), bits.begin(), bits.begin(),
                       [](std::uint64_t a, std::uint64_t b) { return a | b; });
    }
}

} // namespace thntfs
