#include "catalogue/CatalogueReader.h"

#include "engine/EngineState.h"
#include "engine/Host.h"
#include "engine/SectorReader.h"
#include "platform/files/PagedFile.h"

#include <algorithm>
#include <array>
#include <new>

namespace thntfs {

namespace {

ErrorCode ReadPaged(PagedFile* file, std::uint64_t offset, Bytes buffer) {
    std::size_t got = 0;
    return file == nullptr ? kErrorInvalidHandle : file->ReadAt(offset, buffer, got);
}

} // namespace

std::uint64_t CatalogueEntryCount() {
    return Engine.EntryFile == nullptr ? 0 : Engine.EntryFile->Size() / kStoredEntryBytes;
}

int LoadStoredEntry(std::uint32_t entryId, CatalogueEntry& entry) {
    StoredEntry stored{};
    const ErrorCode code =
        ReadPaged(Engine.EntryFile.get(), std::uint64_t{entryId} * kStoredEntryBytes, stored);
    if (code != kErrorNone) {
        Host().ErrorBox(SystemErrorText(code));
        return 0;
    }
    entry = DecodeEntry(stored);
    return 1;
}

void AppendName(const CatalogueEntry& entry, std::u16string& names) {
    const std::uint64_t fileBytes = Engine.NameFile == nullptr ? 0 : Engine.NameFile->Size();
    const std::uint64_t room = fileBytes - std::min<std::uint64_t>(fileBytes, entry.NameOffset);
    auto units = static_cast<std::size_t>(std::min<std::uint64_t>(entry.NameLength, room / 2));
    std::array<std::uint8_t, 512> piece;
    for (std::uint64_t offset = entry.NameOffset; units > 0;) {
        const std::size_t now = std::min(units, piece.size() / 2);
        const Bytes bytes(piece.data(), 2 * now);
        if (ReadPaged(Engine.NameFile.get(), offset, bytes) != kErrorNone) {
            return;
        }
        const std::size_t end = names.size();
        names.resize(end + now);
        std::memcpy(names.data() + end, bytes.data(), bytes.size());
        units -= now;
        offset += bytes.size();
    }
}

void FillItem(const CatalogueEntry& entry, CatalogueItem& item) {
    item.RecordSector = entry.RecordSector;
    item.Size = entry.Size;
    item.EntryId = entry.EntryId;
    item.RecordNumber = entry.RecordNumber;
    item.ParentNumber = entry.ParentNumber;
    item.BlockOffset = entry.BlockOffset;
    item.CreatedDate = entry.CreatedDate;
    item.AccessedDate = entry.AccessedDate;
    item.Flags = entry.Flags;
    item.NameLength = entry.NameLength;
}

int LoadEntryInto(std::uint32_t entryId, CatalogueItem& item) {
    CatalogueEntry entry;
    if (LoadStoredEntry(entryId, entry) == 0) {
        return 0;
    }
    FillItem(entry, item);
    item.Name.clear();
    AppendName(entry, item.Name);
    return 1;
}

std::unique_ptr<CatalogueItem> LoadEntry(std::uint32_t entryId) try {
    auto item = std::make_unique<CatalogueItem>();
    if (LoadEntryInto(entryId, *item) == 0) {
        return nullptr;
    }
    return item;
} catch (const std::bad_alloc&) {
    return nullptr;
}

SeenBlocks::SeenBlocks()
    : seen_(Engine.TreeFile == nullptr
                ? 0
                : static_cast<std::size_t>(Engine.TreeFile->Size() / kStoredBlockBytes)) {}

bool SeenBlocks::Mark(std::uint32_t blockOffset) {
    const std::size_t block = blockOffset / kStoredBlockBytes;
    if (block >= seen_.size() || seen_[block]) {
        return false;
    }
    seen_[block] = true;
    return true;
}

ChildWalk::ChildWalk(std::uint32_t blockOffset, SeenBlocks* seen)
    : blockOffset_(blockOffset)
    , seen_(seen) {
    LoadBlock();
}

void ChildWalk::LoadBlock() {
    slot_ = 0;
    if (seen_ != nullptr && !seen_->Mark(blockOffset_)) {
        block_ = FolderBlock();
        return;
    }
    StoredBlock stored{};
    const ErrorCode code = ReadPaged(Engine.TreeFile.get(), blockOffset_, stored);
    if (code != kErrorNone) {
        RaiseFatal(code);
    }
    block_ = DecodeBlock(stored);
}

std::uint32_t ChildWalk::Next() {
    for (;;) {
        while (slot_ < kSlotsPerBlock) {
            const std::uint32_t child = block_.Slots.at(slot_++);
            if (child != 0) {
                return child;
            }
        }
        if (block_.NextBlock <= blockOffset_) {
            return 0;
        }
        blockOffset_ = block_.NextBlock;
        LoadBlock();
    }
}

EntryList ListFolder(std::uint32_t blockOffset, std::uint64_t& totalBytes, std::uint32_t& fileCount,
                     std::uint32_t& folderCount, bool keepFiles) {
    EntryList files;
    EntryList folders;
    ChildWalk children(blockOffset);
    for (std::uint32_t child = children.Next(); child != 0; child = children.Next()) {
        CatalogueItem item;
        if (LoadEntryInto(child, item) == 0) {
            continue;
        }
        totalBytes += item.Size;
        if (item.IsFolder()) {
            ++folderCount;
            folders.push_back(std::move(item));
        } else {
            ++fileCount;
            if (keepFiles) {
                files.push_back(std::move(item));
            }
        }
    }
    EntryList entries(std::make_move_iterator(files.rbegin()), std::make_move_iterator(files.rend()));
    std::move(folders.rbegin(), folders.rend(), std::back_inserter(entries));
    return entries;
}

} // namespace thntfs
