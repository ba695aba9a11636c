// Big blocks that are kept for the next input. Mapping and clearing them anew took most of an input's time.
// Defined in the target itself, so that the linker takes no others from the library.

#include "platform/system/BigBlock.h"

#include <sanitizer/asan_interface.h>

namespace thntfs {

namespace {

// Of a released block: enough to catch most uses of it, and done in no time.
constexpr std::size_t kGuardedBytes = std::size_t{16} << 10U;

std::vector<std::uint8_t*>& KeptBlocks() {
    static auto* blocks = new std::vector<std::uint8_t*>; // outlives every static that releases a block
    return *blocks;
}

} // namespace

void BigBlockRelease::operator()(std::uint8_t* block) const noexcept {
    ASAN_POISON_MEMORY_REGION(block, kGuardedBytes);
    KeptBlocks().push_back(block);
}

BigBlock MakeBigBlock() {
    std::vector<std::uint8_t*>& kept = KeptBlocks();
    if (kept.empty()) {
        return BigBlock(
            static_cast<std::uint8_t*>(operator new (kBigBlockBytes, std::align_val_t{kBigBlockBytes})));
    }
    std::uint8_t* block = kept.back();
    kept.pop_back();
    ASAN_UNPOISON_MEMORY_REGION(block, kGuardedBytes);
    return BigBlock(block);
}

} // namespace thntfs
