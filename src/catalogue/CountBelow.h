#pragma once

#include <cstdint>
#include <functional>

namespace thntfs {

/// What lies below a folder, at all depths, without itself.
struct BelowCounts {
    std::uint64_t Bytes = 0; ///< the sizes of all files and folders
    std::uint32_t Files = 0;
    std::uint32_t Folders = 0;
};

/// Counts what is below a folder of the open catalogue. `blockOffset`: byte offset in TreeFile of its first
/// block. `mayGoOn` is asked every few milliseconds, with the counts so far; where it says no, these are the
/// result. No entry counts twice, however a damaged catalogue links them. Memory follows the number of
/// folders, and takes a bit an entry. Throws CUserException, after a box, where the catalogue can't be read.
BelowCounts CountBelow(std::uint32_t blockOffset,
                       const std::function<bool(const BelowCounts& soFar)>& mayGoOn);

} // namespace thntfs
