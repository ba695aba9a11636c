#include "catalogue/CatalogueReader.h"

#include "engine/EngineState.h"
#include "engine/SectorReader.h"
#include "platform/Host.h"

#include <array>
#include <new>

namespace thntfs {

namespace {

constexpr std::size_t kMaxNameUnits = 0xFFFF;

ErrorCode ReadPaged(PagedFile* file, std::uint64_t offset, Bytes buffer) {
    std::size_t got = 0;
    return file == nullptr ? kErrorInvalidHandle : file->ReadAt(offset, buffer, got);
}

void CopyFields(const CatalogueEntry& entry, CatalogueItem& item) {
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

// What the file doesn't hold of a name stays zero.
void LoadName(const CatalogueEntry& entry, std::u16string& name) {
    static_assert(kMaxNameUnits >= 0xFFFF, "any stored length fits");
    name.assign(entry.NameLength, u'\0');
    std::array<std::uint8_t, 512> piece;
    for (std::size_t done = 0; done < name.size();) {
        const std::size_t units = std::min(name.size() - done, piece.size() / 2);
        std::memset(piece.data(), 0, 2 * units);
        ReadPaged(Engine.NameFile.get(), std::uint64_t{entry.NameOffset} + 2 * done, Bytes(piece.data(), 2 * units));
        std::memcpy(name.data() + done, piece.data(), 2 * units);
        done += units;
    }
}

} // namespace

std::uint64_t CatalogueEntryCount() {
    return Engine.EntryFile == nullptr ? 0 : Engine.EntryFile->Size() / kStoredEntryBytes;
}

int LoadEntryInto(std::uint32_t entryId, CatalogueItem& item) {
    StoredEntry stored{};
    const ErrorCode code =
        ReadPaged(Engine.EntryFile.get(), std::uint64_t{entryId} * kStoredEntryBytes, stored);
    if (code != kErrorNone) {
        Host().ErrorBox(SystemErrorText(code));
        return 0;
    }
    const CatalogueEntry entry = DecodeEntry(stored);
    CopyFields(entry, item);
    LoadName(entry, item.Name);
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

ChildWalk::ChildWalk(std::uint32_t blockOffset)
    : blockOffset_(blockOffset)
    , blocksLeft_(Engine.TreeFile == nullptr ? 1 : Engine.TreeFile->Size() / kStoredBlockBytes + 1) {
    LoadBlock();
}

void ChildWalk::LoadBlock() {
    StoredBlock stored{};
    const ErrorCode code = ReadPaged(Engine.TreeFile.get(), blockOffset_, stored);
    if (code != kErrorNone) {
        RaiseFatal(code);
    }
    block_ = DecodeBlock(stored);
    slot_ = 0;
    --blocksLeft_;
}

std::uint32_t ChildWalk::Next() {
    for (;;) {
        while (slot_ < kSlotsPerBlock) {
            const std::uint32_t child = block_.Slots.at(slot_++);
            if (child != 0) {
                return child;
            }
        }
        if (block_.NextBlock == 0 || blocksLeft_ == 0) {
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
        std::unique_ptr<CatalogueItem> item = LoadEntry(child);
        if (item == nullptr) {
            continue;
        }
        totalBytes += item->Size;
        if (item->IsFolder()) {
            ++folderCount;
            folders.PushFront(std::move(item));
        } else {
            ++fileCount;
            if (keepFiles) {
                files.PushFront(std::move(item));
            }
        }
    }
    files.Splice(std::move(folders));
    return files;
}

} // namespace thntfs
