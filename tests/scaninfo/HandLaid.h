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

struct LaidExtent {
    std::uint32_t Clusters = 0;
    std::uint64_t StartCluster = 0;
};

/// What a hand-laid file says. Links are 1 where another record follows.
struct Laid {
    std::string Description; ///< ASCII
    std::uint16_t BytesPerSector = 512;
    std::uint64_t TotalSectors = 0;
    std::vector<LaidCandidate> Candidates;
    std::vector<LaidExtent> Extents;
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

/// Makes room for a record of `length` bytes and gives its offset.
inline std::size_t Grow(ByteVector& bytes, std::size_t length) {
    bytes.resize(bytes.size() + length);
    return bytes.size() - length;
}

inline void LayDisk(ByteVector& bytes, const Laid& laid) {
    const std::size_t at = Grow(bytes, 542);
    for (std::size_t i = 0; i < laid.Description.size(); ++i) {
        bytes.at(at + 2 * i) = static_cast<std::uint8_t>(laid.Description[i]);
    }
    Lay(bytes, at + 516, 2, laid.BytesPerSector);
    Lay(bytes, at + 518, 8, laid.TotalSectors);
    Lay(bytes, at + 534, 4, laid.Candidates.empty() ? 0 : 1);
    Lay(bytes, at + 538, 4, laid.Candidates.empty() ? 0 : 1);
    for (std::size_t i = 0; i < laid.Candidates.size(); ++i) {
        const LaidCandidate& candidate = laid.Candidates[i];
        const std::size_t record = Grow(bytes, 76);
        Lay(bytes, record + 8, 8, candidate.StartSector);
        Lay(bytes, record + 16, 8, candidate.TotalSectors);
        Lay(bytes, record + 24, 8, candidate.StartSector + 32);         // sector of the table
        Lay(bytes, record + 32, 8, 4);                                  // its cluster
        Lay(bytes, record + 40, 8, 1024);                               // its mirror's
        Lay(bytes, record + 48, 8, 0x1122334455667788);                 // serial
        Lay(bytes, record + 56, 4, 4096);                               // index block
        Lay(bytes, record + 60, 4, 512U * candidate.SectorsPerCluster); // cluster
        Lay(bytes, record + 64, 2, 1024);                               // file record
        Lay(bytes, record + 66, 2, 512);                                // sector
        Lay(bytes, record + 68, 1, candidate.SectorsPerCluster);
        Lay(bytes, record + 69, 1, 2);
        Lay(bytes, record + 70, 1, 8);
        Lay(bytes, record + 71, 1, 5); // evidence
        Lay(bytes, record + 72, 4, i + 1 < laid.Candidates.size() ? 1 : 0);
    }
}

inline void LayVolume(ByteVector& bytes, const Laid& laid) {
    const std::size_t at = Grow(bytes, 74);
    Lay(bytes, at, 8, 16383);
    Lay(bytes, at + 8, 8, 160);
    Lay(bytes, at + 16, 8, 4);
    Lay(bytes, at + 24, 8, 1024);
    Lay(bytes, at + 32, 8, 0x1122334455667788);
    Lay(bytes, at + 40, 8, 128);
    Lay(bytes, at + 48, 4, laid.Extents.empty() ? 0 : 1);
    Lay(bytes, at + 52, 4, 256);
    Lay(bytes, at + 56, 4, laid.FileRecordBytes);
    Lay(bytes, at + 60, 4, 4096);
    Lay(bytes, at + 64, 4, 4096);
    Lay(bytes, at + 68, 2, 512);
    Lay(bytes, at + 70, 1, 2);
    Lay(bytes, at + 71, 1, 8);
    Lay(bytes, at + 72, 1, 8);
    Lay(bytes, at + 73, 1, 1);
    for (std::size_t i = 0; i < laid.Extents.size(); ++i) {
        const std::size_t record = Grow(bytes, 16);
        Lay(bytes, record, 4, laid.Extents[i].Clusters);
        Lay(bytes, record + 4, 8, laid.Extents[i].StartCluster);
        Lay(bytes, record + 12, 4, i + 1 < laid.Extents.size() ? 1 : 0);
    }
}

inline void LaySized(ByteVector& bytes, const ByteVector& content) {
    Lay(bytes, Grow(bytes, 8), 8, content.size());
    AppendBytes(bytes, content);
}

inline void LaySeparator(ByteVector& bytes) { AppendBytes(bytes, ByteVector{1, 1, 1, 1}); }

inline ByteVector LayTreeInfo(const Laid& laid) {
    ByteVector bytes = {0, 0, 1, 1};
    LayDisk(bytes, laid);
    LayVolume(bytes, laid);
    LaySeparator(bytes);
    LaySized(bytes, laid.Tree);
    LaySeparator(bytes);
    LaySized(bytes, laid.Entries);
    LaySeparator(bytes);
    LaySized(bytes, laid.Names);
    return bytes;
}

inline ByteVector LayPartitionInfo(const Laid& laid) {
    ByteVector bytes = {1, 1, 0, 0};
    LayDisk(bytes, laid);
    return bytes;
}

/// A block of a folder's chain.
inline void LayBlock(ByteVector& tree, std::uint32_t owner, std::uint32_t next,
                     const std::vector<std::uint32_t>& slots) {
    const std::size_t at = Grow(tree, 128);
    Lay(tree, at, 4, owner);
    Lay(tree, at + 4, 4, next);
    for (std::size_t i = 0; i < slots.size(); ++i) {
        Lay(tree, at + 8 + 4 * i, 4, slots[i]);
    }
}

/// An entry and its name, with the next free EntryId.
inline void LayEntry(Laid& laid, std::uint32_t number, std::uint32_t parent, std::uint32_t block, bool folder,
                     std::u16string_view name, std::uint64_t size = 0) {
    const std::size_t at = Grow(laid.Entries, 44);
    Lay(laid.Entries, at, 8, size);
    Lay(laid.Entries, at + 8, 8, 160 + 2 * number);
    Lay(laid.Entries, at + 16, 4, at / 44);
    Lay(laid.Entries, at + 20, 4, number);
    Lay(laid.Entries, at + 24, 4, parent);
    Lay(laid.Entries, at + 28, 4, block);
    Lay(laid.Entries, at + 32, 4, laid.Names.size());
    Lay(laid.Entries, at + 36, 2, name.size());
    Lay(laid.Entries, at + 38, 2, folder ? 24 : 8);
    AppendText(laid.Names, name);
}

/// A catalogue of the two seeds, "folder" and in it "file.txt".
inline void LaySmallCatalogue(Laid& laid) {
    LayBlock(laid.Tree, 0, 0, {1});
    LayBlock(laid.Tree, 5, 0, {2});
    LayBlock(laid.Tree, 40, 0, {3});
    LayEntry(laid, 0, 0, 0, true, u"#");
    LayEntry(laid, 5, 0, 128, true, u" Root");
    LayEntry(laid, 40, 5, 256, true, u"folder");
    LayEntry(laid, 41, 40, 0, false, u"file.txt", 5);
}

} // namespace thntfs::test
