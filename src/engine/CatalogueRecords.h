#pragma once

#include "engine/LittleEndian.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace thntfs {

/// A file of the catalogue grows no further: offsets within it have 32 bits, and the last block that they can
/// name stays free, so that a chain that begins there is empty.
inline constexpr std::uint64_t kMaxCatalogueFileBytes = 0xFFFFFF80;

/// The two entries with which each catalogue begins: the top, which holds all, and the root folder.
inline constexpr std::uint32_t kTopEntryId = 0;
inline constexpr std::uint32_t kRootEntryId = 1;

/// Bits of an entry's Flags that the catalogue has taken over from the file attribute word.
inline constexpr std::uint16_t kFlagLive = 8;
inline constexpr std::uint16_t kFlagFolder = 16;

/// One entry of EntryFile.
struct CatalogueEntry {
    std::uint64_t Size = 0; ///< data size in bytes, 0 for a folder
    std::uint64_t RecordSector =
        0;                     ///< absolute sector of the FILE record, 0 where none stands behind the entry
    std::uint32_t EntryId = 0; ///< the entry's own index
    std::uint32_t RecordNumber = 0;
    std::uint32_t ParentNumber = 0; ///< RecordNumber of the parent folder
    std::uint32_t BlockOffset = 0;  ///< folder: byte offset in TreeFile of its first FolderBlock
    std::uint32_t NameOffset = 0;   ///< byte offset of the name in NameFile
    std::uint16_t NameLength = 0;   ///< in UTF-16 units
    std::uint16_t Flags = 0;
    std::uint16_t CreatedDate = 0;  ///< DOS date, 0 for none
    std::uint16_t AccessedDate = 0; ///< DOS date, 0 for none
};

/// A file has a further name, in the folder with this RecordNumber, unless its records tell otherwise.
struct FurtherParent {
    std::uint32_t EntryId = 0;
    std::uint32_t ParentNumber = 0;
};

inline constexpr std::size_t kStoredEntryBytes = 44;
using StoredEntry = std::array<std::uint8_t, kStoredEntryBytes>;
static_assert(sizeof(StoredEntry) == kStoredEntryBytes);

StoredEntry EncodeEntry(const CatalogueEntry& entry);
/// The same into the first 44 bytes of a span.
void EncodeEntryInto(Bytes stored, const CatalogueEntry& entry);
/// Decodes the first 44 bytes of a span; bytes that it doesn't have read as 0.
CatalogueEntry DecodeEntry(ConstBytes stored);

inline constexpr std::size_t kSlotsPerBlock = 30;

/// One block of a folder's chain in TreeFile.
struct FolderBlock {
    std::uint32_t OwnerNumber = 0;                     ///< RecordNumber of the folder
    std::uint32_t NextBlock = 0;                       ///< byte offset of the next block, 0 at the end
    std::array<std::uint32_t, kSlotsPerBlock> Slots{}; ///< EntryId of a child, 0 for a free slot
};

inline constexpr std::size_t kStoredBlockBytes = 128;
using StoredBlock = std::array<std::uint8_t, kStoredBlockBytes>;
static_assert(sizeof(StoredBlock) == kStoredBlockBytes);

StoredBlock EncodeBlock(const FolderBlock& block);
FolderBlock DecodeBlock(ConstBytes stored);

} // namespace thntfs
