#pragma once

#include "support/VolumeBuilderRecord.h"

namespace thntfs::test {

/// Builds one INDX block: entries in the order of the calls, then the end entry.
/// An entry that doesn't fit throws std::length_error.
class IndexBlockBuilder {
public:
    /// `vcn` is the block's own place in the folder's index allocation, in clusters.
    explicit IndexBlockBuilder(const VolumeGeometry& geometry, std::uint64_t vcn = 0);

    IndexBlockBuilder& Add(const IndexEntry& entry);
    /// Bytes taken as a whole entry as they are.
    IndexBlockBuilder& AddRaw(ConstBytes entry);
    /// No end entry; bytes in use end with the last entry.
    IndexBlockBuilder& OmitEndEntry();

    /// Byte offset in the block of the next entry to be added.
    [[nodiscard]] std::size_t NextEntryOffset() const { return first_ + entries_.size(); }

    IndexBlockBuilder& Poke16(std::size_t offset, std::uint16_t value);
    IndexBlockBuilder& Poke32(std::size_t offset, std::uint32_t value);

    [[nodiscard]] ByteVector RawBytes() const;
    [[nodiscard]] ByteVector Finish() const;

private:
    struct PokedBytes {
        std::size_t Offset = 0;
        std::size_t Width = 0;
        std::uint32_t Value = 0;
    };

    VolumeGeometry geometry_;
    std::uint64_t vcn_;
    std::size_t first_;
    bool endEntry_ = true;
    ByteVector entries_;
    std::vector<PokedBytes> pokes_;
};

} // namespace thntfs::test
