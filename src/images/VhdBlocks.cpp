#include "images/VhdBlocks.h"

#include "images/ImageFault.h"
#include "images/StoredNumber.h"
#include "platform/media/Medium.h"

#include <algorithm>
#include <array>

namespace thntfs {

namespace {

constexpr std::uint64_t kSectorBytes = 512;
constexpr std::uint32_t kNoBlock = 0xFFFFFFFF;
constexpr std::uint32_t kMostBlocks = 1U << 24U;
constexpr std::uint64_t kMostBlockBytes = std::uint64_t{1} << 30U;

template <typename Buffer>
void ReadPart(Medium& file, std::uint64_t offset, Buffer& buffer) {
    if (offset > file.SizeBytes() || buffer.size() > file.SizeBytes() - offset ||
        file.ReadAt(offset, buffer) != kErrorNone) {
        throw DamagedImage(ImageKind::Vhd);
    }
}

} // namespace

VhdBlocks::VhdBlocks(Medium& file)
    : fileBytes_(file.SizeBytes()) {
    std::array<std::uint8_t, kVhdFooterBytes> footer{};
    std::array<std::uint8_t, 1024> header{};
    ReadPart(file, fileBytes_ - std::min(fileBytes_, kVhdFooterBytes), footer);
    ReadPart(file, BigNumberAt<std::uint64_t>(footer, 16), header);
    const auto tableOffset = BigNumberAt<std::uint64_t>(header, 16);
    const auto count = BigNumberAt<std::uint32_t>(header, 28);
    blockBytes_ = BigNumberAt<std::uint32_t>(header, 32);
    if (count > kMostBlocks || blockBytes_ == 0 || blockBytes_ % kSectorBytes != 0 ||
        blockBytes_ > kMostBlockBytes) {
        throw DamagedImage(ImageKind::Vhd);
    }
    const std::uint64_t bitmapBits = blockBytes_ / kSectorBytes;
    bitmapBytes_ = (bitmapBits / 8 + kSectorBytes - 1) / kSectorBytes * kSectorBytes;
    std::vector<std::uint8_t> table(count * sizeof(std::uint32_t));
    ReadPart(file, tableOffset, table);
    for (std::size_t at = 0; at < table.size(); at += sizeof(std::uint32_t)) {
        const auto sector = BigNumberAt<std::uint32_t>(table, at);
        sectors_.push_back(sector);
        if (sector != kNoBlock) {
            rising_.push_back(sector);
        }
    }
    std::sort(rising_.begin(), rising_.end());
    tableEnd_ = tableOffset + table.size();
}

std::uint64_t VhdBlocks::SoundBytes(std::uint64_t offset, std::uint64_t most) const {
    const std::uint64_t block = offset / blockBytes_;
    if (block >= sectors_.size()) {
        return 0;
    }
    const std::uint64_t inBlock = offset % blockBytes_;
    const std::uint64_t count = std::min(most, blockBytes_ - inBlock);
    const std::uint32_t sector = sectors_[block];
    if (sector == kNoBlock) {
        return count;
    }
    const std::uint64_t start = sector * kSectorBytes;
    const std::uint64_t place = start + bitmapBytes_ + inBlock;
    if (start < tableEnd_ || place >= fileBytes_ || !IsAlone(sector)) {
        return 0;
    }
    return std::min(count, fileBytes_ - place);
}

// No other block begins within this one, nor this one within another.
bool VhdBlocks::IsAlone(std::uint32_t sector) const {
    const std::uint64_t sectors = (bitmapBytes_ + blockBytes_) / kSectorBytes;
    const auto low =
        std::upper_bound(rising_.begin(), rising_.end(), sector,
                         [&](std::uint64_t s, std::uint64_t other) { return s < other + sectors; });
    const auto high = std::lower_bound(low, rising_.end(), sector + sectors);
    return high - low == 1;
}

} // namespace thntfs
