#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

namespace thntfs {

/// What became of an area of the source. The values are the letters of the map file.
enum class AreaState : char { Unread = '?', Bad = '-', Read = '+' };

/// A stretch of one state, in bytes of the source.
struct Area {
    std::uint64_t First = 0;
    std::uint64_t Size = 0;
    AreaState State = AreaState::Unread;

    [[nodiscard]] std::uint64_t End() const { return First + Size; }
};

/// The account of a copy: which bytes of the source are in the target, which could not be read, which are
/// still to be read. Its areas touch each other, cover the source from end to end, and no two neighbours have
/// one state.
///
/// Memory is bounded: beyond kMaxAreas areas the shortest read ones between bad ones count as bad, which
/// costs another reading of them and loses nothing.
class CopyMap {
public:
    static constexpr std::size_t kMaxAreas = std::size_t{1} << 18U;

    /// Nothing read yet. `maxAreas` is at least 8.
    explicit CopyMap(std::uint64_t totalBytes, std::size_t maxAreas = kMaxAreas);

    /// Gives a stretch a state. What lies behind the end of the source is left out.
    void Mark(std::uint64_t first, std::uint64_t size, AreaState state);

    /// The first area of a state that reaches beyond `from`, cut to begin there at the earliest.
    [[nodiscard]] std::optional<Area> Find(AreaState state, std::uint64_t from) const;

    [[nodiscard]] std::uint64_t BytesOf(AreaState state) const;
    [[nodiscard]] std::uint64_t TotalBytes() const { return totalBytes_; }
    [[nodiscard]] std::size_t AreaCount() const { return starts_.size(); }

    /// Calls `take(area)` for all areas in order.
    template <typename Take>
    void ForEach(Take take) const {
        for (auto start = starts_.begin(); start != starts_.end(); ++start) {
            take(AreaAt(start));
        }
    }

private:
    using Starts = std::map<std::uint64_t, AreaState>;

    [[nodiscard]] Area AreaAt(Starts::const_iterator start) const;
    Starts::iterator SplitAt(std::uint64_t place);
    void JoinWithPrevious(Starts::iterator start);
    void Thin();
    void DropReadUpTo(std::uint64_t bytes);

    std::uint64_t totalBytes_;
    std::size_t maxAreas_;
    Starts starts_; ///< where each area begins
};

} // namespace thntfs
