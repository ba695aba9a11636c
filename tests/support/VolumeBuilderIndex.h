#pragma once

#include "support/VolumeBuilderRecord.h"

namespace thntfs::test {

/// Builds one INDX block: entries in the order of the calls, then the end entry.
/// An entry that doesn't fit throws std::length_error.
class IndexBlockBuilder {
public:
    explicit IndexBlockBuilder(const VolumeGeometry& geometry);

    IndexBlockBuilder& Add(const IndexEntry& entry);
    /// Bytes taken as a whole entry as they are.
    IndexBlockBuilder& AddRaw(ConstBytes entry);
    /// Puts a number at a byte offset of the block once all else is laid out, before the protection.
    IndexBlockBuilder& Poke(std::size_t offset, std::size_t width, std::uint64_t value);

    [[nodiscard]] ByteVector Finish() const;

private:
    VolumeGeometry geometry_;
    std::size_t first_;
    ByteVector entries_;
    std::vector<PokedBytes> pokes_;
};

} // namespace thntfs::test
