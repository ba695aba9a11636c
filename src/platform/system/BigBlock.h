#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

namespace thntfs {

/// Memory that is used all over at random: one block of kBigBlockBytes, with any content, aligned to
/// its own size, which the system is asked to map as one large page. A walk over many small pages spends its
/// time on finding them.
inline constexpr std::size_t kBigBlockBytes = std::size_t{2} << 20U;

struct BigBlockRelease {
    void operator()(std::uint8_t* block) const noexcept;
};
using BigBlock = std::unique_ptr<std::uint8_t, BigBlockRelease>;

/// Throws std::bad_alloc. Memory that is never touched costs none.
BigBlock MakeBigBlock();

/// A growing array of records in big blocks. They never move, and live as long as the pool.
template <typename Record>
class BigBlockPool {
    static_assert(std::is_trivially_destructible_v<Record> && alignof(Record) <= kBigBlockBytes);

public:
    /// Appends a record and gives it. Throws std::bad_alloc.
    Record& Add() {
        if (count_ == blocks_.size() * kInBlock) {
            blocks_.push_back(MakeBigBlock());
        }
        return *new (Place(count_++)) Record();
    }

    /// The record at an index below Count.
    [[nodiscard]] Record& At(std::size_t index) const {
        return *std::launder(reinterpret_cast<Record*>(Place(index)));
    }

    [[nodiscard]] std::size_t Count() const { return count_; }

private:
    static constexpr std::size_t kInBlock = kBigBlockBytes / sizeof(Record);

    [[nodiscard]] std::uint8_t* Place(std::size_t index) const {
        return blocks_[index / kInBlock].get() + index % kInBlock * sizeof(Record);
    }

    std::vector<BigBlock> blocks_;
    std::size_t count_ = 0;
};

} // namespace thntfs
