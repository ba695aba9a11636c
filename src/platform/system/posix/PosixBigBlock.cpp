#include "platform/system/BigBlock.h"

#include <new>
#include <sys/mman.h>

namespace thntfs {

namespace {

std::uint8_t* Map(std::size_t bytes) {
    void* mapped = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) {
        throw std::bad_alloc();
    }
    return static_cast<std::uint8_t*>(mapped);
}

} // namespace

void BigBlockRelease::operator()(std::uint8_t* block) const noexcept { munmap(block, kBigBlockBytes); }

// Twice the size holds one aligned block; what lies around it is given back.
BigBlock MakeBigBlock() {
    std::uint8_t* mapped = Map(2 * kBigBlockBytes);
    void* place = mapped;
    std::size_t room = 2 * kBigBlockBytes;
    auto* block = static_cast<std::uint8_t*>(std::align(kBigBlockBytes, kBigBlockBytes, place, room));
    if (block != mapped) {
        munmap(mapped, static_cast<std::size_t>(block - mapped));
    }
    munmap(block + kBigBlockBytes, static_cast<std::size_t>(mapped + kBigBlockBytes - block));
    madvise(block, kBigBlockBytes, MADV_HUGEPAGE);
    return BigBlock(block);
}

} // namespace thntfs
