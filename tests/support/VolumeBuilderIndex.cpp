#include "support/VolumeBuilderIndex.h"

#include <algorithm>
#include <stdexcept>

namespace thntfs::test {

namespace {

constexpr std::size_t kArrayOffset = 40;
constexpr std::size_t kNodeOffset = 24; ///< the block's own numbers count from here

} // namespace

IndexBlockBuilder::IndexBlockBuilder(const VolumeGeometry& geometry)
    : geometry_(geometry)
    , first_(RoundUp8(kArrayOffset + 2 * (geometry.IndexBlockBytes / geometry.SectorBytes + 1))) {}

IndexBlockBuilder& IndexBlockBuilder::Add(const IndexEntry& entry) { return AddRaw(EncodeIndexEntry(entry)); }

IndexBlockBuilder& IndexBlockBuilder::AddRaw(ConstBytes entry) {
    AppendBytes(entries_, entry);
    return *this;
}

IndexBlockBuilder& IndexBlockBuilder::Poke(std::size_t offset, std::size_t width, std::uint64_t value) {
    pokes_.push_back({offset, width, value});
    return *this;
}

ByteVector IndexBlockBuilder::Finish() const {
    ByteVector content = entries_;
    AppendBytes(content, EncodeEndEntry());
    if (first_ + content.size() > geometry_.IndexBlockBytes) {
        throw std::length_error("entries don't fit into the index block");
    }
    ByteVector block(geometry_.IndexBlockBytes);
    std::copy(content.begin(), content.end(), block.begin() + static_cast<std::ptrdiff_t>(first_));
    PutNumber(block, 0, std::uint32_t{0x58444E49}); // "INDX"
    PutNumber(block, 4, static_cast<std::uint16_t>(kArrayOffset));
    PutNumber(block, 6, static_cast<std::uint16_t>(geometry_.IndexBlockBytes / geometry_.SectorBytes + 1));
    PutNumber(block, 24, static_cast<std::uint32_t>(first_ - kNodeOffset));
    PutNumber(block, 28, static_cast<std::uint32_t>(first_ + content.size() - kNodeOffset));
    PutNumber(block, 32, static_cast<std::uint32_t>(geometry_.IndexBlockBytes - kNodeOffset));
    ApplyPokes(block, pokes_);
    ProtectBlock(block, kArrayOffset, geometry_.SectorBytes, 0x0203);
    return block;
}

} // namespace thntfs::test
