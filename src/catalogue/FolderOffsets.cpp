#include "catalogue/FolderOffsets.h"

#include "catalogue/EntryPass.h"

#include <bit>

namespace thntfs {

FolderOffsets::FolderOffsets()
    : whole_(PassEntries([this](std::uint32_t id, const CatalogueEntry& entry) {
        Add(id, (entry.Flags & kFlagFolder) != 0, entry.BlockOffset);
    })) {}

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
