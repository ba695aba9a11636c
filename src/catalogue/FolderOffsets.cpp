#include "catalogue/FolderOffsets.h"

#include "catalogue/CatalogueReader.h"
#include "engine/EngineState.h"
#include "platform/files/PagedFile.h"

#include <algorithm>
#include <bit>

namespace thntfs {

namespace {

constexpr std::size_t kEntriesAtATime = 1024;

} // namespace

FolderOffsets::FolderOffsets() {
    const std::uint64_t count = CatalogueEntryCount();
    std::vector<std::uint8_t> piece(kEntriesAtATime * kStoredEntryBytes);
    for (std::uint64_t id = 0; id < count;) {
        std::size_t got = 0;
        std::fill(piece.begin(), piece.end(), std::uint8_t{0});
        Engine.EntryFile->ReadAt(id * kStoredEntryBytes, piece, got);
        const std::uint64_t end = std::min<std::uint64_t>(count, id + kEntriesAtATime);
        for (std::size_t at = 0; id < end; ++id, at += kStoredEntryBytes) {
            const CatalogueEntry entry = DecodeEntry(ConstBytes(piece).subspan(at, kStoredEntryBytes));
            Add(static_cast<std::uint32_t>(id), (entry.Flags & kFlagFolder) != 0, entry.BlockOffset);
        }
    }
}

void FolderOffsets::Add(std::uint32_t entryId, bool folder, std::uint32_t blockOffset) {
    if (entryId % kGroupEntries == 0) {
        folderBits_.push_back(0);
        foldersBefore_.push_back(static_cast<std::uint32_t>(blockOffsets_.size()));
    }
    if (folder) {
        folderBits_.back() |= std::uint64_t{1} << (entryId % kGroupEntries);
        blockOffsets_.push_back(blockOffset);
    }
}

std::optional<std::uint32_t> FolderOffsets::BlockOffset(std::uint32_t entryId) const {
    const std::size_t group = entryId / kGroupEntries;
    const std::uint64_t bit = std::uint64_t{1} << (entryId % kGroupEntries);
    if (group >= folderBits_.size() || (folderBits_[group] & bit) == 0) {
        return std::nullopt;
    }
    const auto before = static_cast<std::size_t>(std::popcount(folderBits_[group] & (bit - 1)));
    return blockOffsets_[foldersBefore_[group] + before];
}

} // namespace thntfs
