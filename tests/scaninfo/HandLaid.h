#pragma once

#include "support/VolumeBuilderBytes.h"

#include <string>
#include <vector>

namespace thntfs::test {

// Scan information files laid out byte by byte from the tables of their formats, without the program's own
// encoders.

struct LaidCandidate {
    std::uint64_t StartSector = 0;
    std::uint64_t TotalSectors = 0;
    std::uint8_t SectorsPerCluster = 8;
};

/// What a hand-laid file says. Links are 1 where another record follows.
struct Laid {
    std::string Description; ///< ASCII
    std::uint16_t BytesPerSector = 512;
    std::uint64_t TotalSectors = 0;
    std::vector<LaidCandidate> Candidates;
    std::uint64_t VolumeStart = 128; ///< sector
    std::vector<Run> Extents;
    std::uint32_t FileRecordBytes = 1024;
    ByteVector Tree;
    ByteVector Entries;
    ByteVector Names;
};

/// A number put at a byte offset, little-endian, `width` bytes wide.
inline void Lay(ByteVector& bytes, std::size_t offset, std::size_t width, std::uint64_t number) {
    for (std::size_t i = 0; i < width; ++i) {
        bytes.at(offset + i) = static_cast<std::uint8_t>(number >> (8 * i));
    }
}

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = std::uint64_t;

/// Appends numbers, each as wide as its type, and gives the offset of the first.
template <typename... Numbers>
std::size_t LayFields(ByteVector& bytes, Numbers... numbers) {
    const std::size_t start = bytes.size();
    std::size_t at = start;
    bytes.resize(start + (sizeof(Numbers) + ...));
    ((Lay(bytes, at, sizeof(Numbers), numbers), at += sizeof(Numbers)), ...);
    return start;
}

inline constexpr U64 kLaidSerial = 0x1122334455667788;

inline void LayDisk(ByteVector& bytes, const Laid& laid) {
    const U32 any = laid.Candidates.empty() ? 0 : 1;
    const std::size_t at = bytes.size();
    bytes.resize(at + 516);
    for (std::size_t i = 0; i < laid.Description.size(); ++i) {
        bytes.at(at + 2 * i) = static_cast<U8>(laid.Description[i]);
    }
    LayFields(bytes, laid.BytesPerSector, laid.TotalSectors, U64{0}, any, any);
    for (const LaidCandidate& candidate : laid.Candidates) {
        const U32 clusterBytes = 512U * candidate.SectorsPerCluster;
        // Its sectors; the table's sector and cluster, the mirror's cluster; bytes of an index block, a
        // cluster, a record, a sector; evidence 5; whether another one follows.
        LayFields(bytes, U64{0}, candidate.StartSector, candidate.TotalSectors, candidate.StartSector + 32,
                  U64{4}, U64{1024}, kLaidSerial, U32{4096}, clusterBytes, U16{1024}, U16{512},
                  candidate.SectorsPerCluster, U8{2}, U8{8}, U8{5},
                  U32{&candidate != &laid.Candidates.back()});
    }
}

inline void LayVolume(ByteVector& bytes, const Laid& laid) {
    const U64 start = laid.VolumeStart;
    // Sectors; the table's sector and cluster, the mirror's cluster; where it starts; runs, records; bytes of
    // a record, an index block, a cluster, a sector.
    LayFields(bytes, U64{16383}, start + 32, U64{4}, U64{1024}, kLaidSerial, start,
              U32{!laid.Extents.empty()}, U32{256}, laid.FileRecordBytes, U32{4096}, U32{4096}, U16{512},
              U8{2}, U8{8}, U8{8}, U8{1});
    for (const Run& extent : laid.Extents) {
        LayFields(bytes, static_cast<U32>(extent.Clusters), extent.Start.value(),
                  U32{&extent != &laid.Extents.back()});
    }
}

inline ByteVector LayTreeInfo(const Laid& laid) {
    ByteVector bytes = {0, 0, 1, 1};
    LayDisk(bytes, laid);
    LayVolume(bytes, laid);
    for (const ByteVector* content : {&laid.Tree, &laid.Entries, &laid.Names}) {
        LayFields(bytes, U32{0x01010101}, U64{content->size()});
        AppendBytes(bytes, *content);
    }
    return bytes;
}

inline ByteVector LayPartitionInfo(const Laid& laid) {
    ByteVector bytes = {1, 1, 0, 0};
    LayDisk(bytes, laid);
    return bytes;
}

/// A block of a folder's chain, which ends with it.
inline void LayBlock(ByteVector& tree, std::uint32_t owner, const std::vector<std::uint32_t>& slots) {
    const std::size_t at = LayFields(tree, owner);
    tree.resize(at + 128);
    for (std::size_t i = 0; i < slots.size(); ++i) {
        Lay(tree, at + 8 + 4 * i, 4, slots[i]);
    }
}

/// An entry and its name, with the next free EntryId.
inline void LayEntry(Laid& laid, std::uint32_t number, std::uint32_t parent, std::uint32_t block, bool folder,
                     std::u16string_view name, std::uint64_t size = 0) {
    const auto id = static_cast<U32>(laid.Entries.size() / 44);
    LayFields(laid.Entries, size, U64{160 + 2 * number}, id, number, parent, block,
              static_cast<U32>(laid.Names.size()), static_cast<U16>(name.size()), folder ? U16{24} : U16{8},
              U32{0});
    AppendText(laid.Names, name);
}

/// A catalogue of the two seeds, "folder" and in it "file.txt".
inline void LaySmallCatalogue(Laid& laid) {
    LayBlock(laid.Tree, 0, {1});
    LayBlock(laid.Tree, 5, {2});
    LayBlock(laid.Tree, 40, {3});
    LayEntry(laid, 0, 0, 0, true, u"#");
    LayEntry(laid, 5, 0, 128, true, u" Root");
    LayEntry(laid, 40, 5, 256, true, u"folder");
    LayEntry(laid, 41, 40, 0, false, u"file.txt", 5);
}

} // namespace thntfs::test
