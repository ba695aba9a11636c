#include "catalogue/Catalogue.h"

#include "catalogue/ChainWords.h"
#include "catalogue/Conditions.h"
#include "engine/FileWrites.h"
#include "engine/SectorReader.h"
#include "platform/files/File.h"
#include "platform/files/PagedFile.h"
#include "platform/system/Text.h"

#include <algorithm>
#include <array>
#include <new>

namespace thntfs {

namespace {

constexpr std::uint32_t kRootRecordNumber = 5;
constexpr std::size_t kMaxNameUnits = 256;

// Bounds of the buffered pages. Chains are written all over TreeFile, so it has most of them while a scan
// writes; entries and names are appended. Readers jump in all three.
constexpr std::size_t kMegabyte = 1U << 20U;
constexpr std::size_t kWriteTreePages = 32 * kMegabyte / PagedFile::kPageBytes;
constexpr std::size_t kAppendPages = kMegabyte / 8 / PagedFile::kPageBytes;
constexpr std::size_t kReadTreePages = 32 * kMegabyte / PagedFile::kPageBytes;
constexpr std::size_t kReadPages = 4 * kMegabyte / PagedFile::kPageBytes;

// Of blocks begun while words are gathered, so many bytes wait to be written: on a full disk the other
// buffers are free for the words.
constexpr std::uint64_t kUnwrittenBlockBytes = kMegabyte / 2;
constexpr std::size_t kTriesOfChains = 1024;

void WritePaged(PagedFile& file, std::uint64_t offset, ConstBytes bytes) {
    if (offset + bytes.size() > kMaxCatalogueFileBytes) {
        RaiseFatal(kErrorFileTooLarge);
    }
    RaiseFailedWrite(file.WriteAt(offset, bytes));
}

// Most entries fit into the page in hand and are encoded where they are going to lie.
void WriteEntry(const CatalogueEntry& entry) {
    const std::uint64_t offset = std::uint64_t{entry.EntryId} * kStoredEntryBytes;
    const Bytes place = offset + kStoredEntryBytes <= kMaxCatalogueFileBytes
                            ? Engine.EntryFile->PlaceInPage(offset, kStoredEntryBytes)
                            : Bytes();
    if (place.empty()) {
        WritePaged(*Engine.EntryFile, offset, EncodeEntry(entry));
    } else {
        EncodeEntryInto(place, entry);
    }
}

ErrorCode StoreTreeWord(std::uint32_t offset, std::uint32_t word) {
    std::array<std::uint8_t, 4> stored{};
    PutNumber(stored, 0, word);
    return Engine.TreeFile->WriteAt(offset, stored);
}

// Writes the gathered words. On a full disk a page that can't be written holds its buffer; another try gets
// the next one, so that the folders written so far get their children all the same. Words left over stay, so
// that a later call tries them again. Gives the first failure.
ErrorCode StoreChains() {
    if (Engine.Chains == nullptr) {
        return kErrorNone;
    }
    ErrorCode failure = kErrorNone;
    std::size_t tries = kTriesOfChains;
    for (const ChainWords::Word& word : Engine.Chains->Sort()) {
        ErrorCode code = StoreTreeWord(word.Offset, word.Value);
        while (IsFailedWrite(code) && tries > 0) {
            --tries;
            failure = failure == kErrorNone ? code : failure;
            code = StoreTreeWord(word.Offset, word.Value);
        }
        if (IsFailedWrite(code)) {
            return failure == kErrorNone ? code : failure;
        }
    }
    Engine.Chains->Clear();
    const ErrorCode code = Engine.TreeFile->Flush();
    return failure == kErrorNone ? code : failure;
}

void WriteTreeWord(std::uint32_t offset, std::uint32_t word) {
    if (Engine.Chains == nullptr) {
        RaiseFailedWrite(StoreTreeWord(offset, word));
        return;
    }
    if (Engine.Chains->Full()) {
        RaiseFailedWrite(StoreChains());
    }
    Engine.Chains->Note(offset, word);
}

// Once TreeFile outgrows its buffers, words are gathered. Without the memory for that the scan is slow.
void GatherChains() try { Engine.Chains = std::make_shared<ChainWords>(); } catch (const std::bad_alloc&) {
}

std::uint32_t SlotOffset(std::uint32_t block, std::uint32_t slot) { return block + 8 + 4 * slot; }

std::unique_ptr<PagedFile> OpenPaged(const char* name, FileMode mode, std::size_t pages) {
    std::unique_ptr<File> file;
    std::uint64_t size = 0;
    if (Files().Open(Engine.CatalogueFolder + name, mode, file) != kErrorNone ||
        file->Size(size) != kErrorNone) {
        return nullptr;
    }
    return std::make_unique<PagedFile>(std::move(file), pages, size);
}

bool OpenThreeFiles(FileMode mode, std::size_t treePages, std::size_t otherPages) {
    Engine.TreeFile = OpenPaged(kTreeFileName, mode, treePages);
    Engine.NameFile = OpenPaged(kNameFileName, mode, otherPages);
    Engine.EntryFile = OpenPaged(kEntryFileName, mode, otherPages);
    return Engine.TreeFile && Engine.NameFile && Engine.EntryFile;
}

void CloseFiles() {
    Engine.TreeFile.reset();
    Engine.NameFile.reset();
    Engine.EntryFile.reset();
    Engine.Folders.reset();
    Engine.Chains.reset();
    Engine.NamesEnd = 0;
    Engine.TreeEnd = 0;
}

// Takes the next block of TreeFile for a folder.
std::uint32_t AppendBlock(const FolderIndexNode& owner, std::uint32_t firstSlot) {
    const std::uint64_t offset = std::uint64_t{Engine.TreeEnd} + kStoredBlockBytes;
    FolderBlock block;
    block.OwnerNumber = owner.RecordNumber;
    block.Slots[0] = firstSlot;
    WritePaged(*Engine.TreeFile, offset, EncodeBlock(block));
    Engine.TreeEnd = static_cast<std::uint32_t>(offset);
    if (offset == kWriteTreePages * PagedFile::kPageBytes) {
        GatherChains();
    }
    if (Engine.Chains != nullptr && offset % kUnwrittenBlockBytes == 0) {
        RaiseFailedWrite(Engine.TreeFile->Flush());
    }
    return Engine.TreeEnd;
}

void WriteSeeds() {
    CatalogueEntry top;
    top.Flags = kFlagLive | kFlagFolder;
    AppendEntry(top, u"#");

    CatalogueEntry root;
    root.EntryId = 1;
    root.RecordNumber = kRootRecordNumber;
    root.BlockOffset = kStoredBlockBytes;
    root.Flags = kFlagLive | kFlagFolder;
    AppendEntry(root, u" Root");

    FolderIndexNode& topNode = *Engine.Folders->FindOrAddFolder(0).Node;
    FolderBlock topBlock;
    topBlock.Slots[0] = 1;
    topNode.UsedSlots = 1;
    WritePaged(*Engine.TreeFile, 0, EncodeBlock(topBlock));

    FolderIndexNode& rootNode = *Engine.Folders->FindOrAddFolder(kRootRecordNumber).Node;
    rootNode.EntryId = 1;
    BeginFolderBlock(rootNode);
}

void AppendLostFolder(FolderIndexNode& node, std::uint32_t entryId) {
    EnsureFolderBlock(node);
    CatalogueEntry lost;
    lost.EntryId = entryId;
    lost.RecordNumber = node.RecordNumber;
    lost.BlockOffset = node.BlockOffset;
    lost.Flags = kFlagFolder;
    AppendEntry(lost, WideText("#" + std::to_string(node.RecordNumber)));
    AddChild(*Engine.Folders->FindOrAddFolder(0).Node, entryId);
}

void AppendLostFolders(std::uint32_t nextEntryId) {
    for (FolderIndexNode* node = Engine.Folders->FolderRoot(); node != nullptr;
         node = FolderTree::NextInPreOrder(node)) {
        if (node->Placeholder != 0) {
            AppendLostFolder(*node, nextEntryId++);
        }
    }
}

// Tries all three, so that the failure of one doesn't cost what the others hold.
void FlushFiles() {
    ErrorCode failure = StoreChains();
    for (PagedFile* file : {Engine.TreeFile.get(), Engine.NameFile.get(), Engine.EntryFile.get()}) {
        const ErrorCode code = file != nullptr ? file->Flush() : kErrorNone;
        failure = IsFailedWrite(failure) ? failure : code;
    }
    RaiseFailedWrite(failure);
}

} // namespace

int CreateCatalogue() {
    CloseFiles();
    ClearConditions();
    Engine.FurtherParents = {};
    Engine.CatalogueVolume = 0;
    try {
        Engine.Folders = std::make_shared<FolderTree>();
        if (OpenThreeFiles(FileMode::CreateOwn, kWriteTreePages, kAppendPages)) {
            WriteSeeds();
            FlushFiles(); // a place that can't be written must show now, not at the end of a scan
            ClaimCatalogue();
            return 1;
        }
    } catch (const CUserException&) {
    } catch (const std::bad_alloc&) {
    }
    CloseFiles();
    return 0;
}

int OpenCatalogue() {
    CloseFiles();
    if (OpenThreeFiles(FileMode::OpenOwn, kReadTreePages, kReadPages)) {
        return 1;
    }
    CloseFiles();
    return 0;
}

int CloseCatalogue() {
    try {
        FlushFiles();
    } catch (const CUserException&) {
        // The user has seen the box; what has been written is all that there is.
    }
    CloseFiles();
    return 1;
}

void PrefetchChain(std::uint32_t recordNumber) {
    if (const FolderIndexNode* node = Engine.Folders->FindFolder(recordNumber); node != nullptr) {
        Engine.TreeFile->Prefetch(SlotOffset(node->LastBlock, node->UsedSlots));
    }
}

void BeginFolderBlock(FolderIndexNode& node) {
    node.BlockOffset = AppendBlock(node, 0);
    node.LastBlock = node.BlockOffset;
    node.UsedSlots = 0;
}

// Block 0 is the top's alone.
void EnsureFolderBlock(FolderIndexNode& node) {
    if (node.LastBlock == 0 && node.RecordNumber != 0) {
        BeginFolderBlock(node);
    }
}

void AddChild(FolderIndexNode& node, std::uint32_t entryId) {
    EnsureFolderBlock(node);
    if (node.UsedSlots < kSlotsPerBlock) {
        WriteTreeWord(SlotOffset(node.LastBlock, node.UsedSlots), entryId);
        ++node.UsedSlots;
        return;
    }
    const std::uint32_t added = AppendBlock(node, entryId);
    WriteTreeWord(node.LastBlock + 4, added);
    node.LastBlock = added;
    node.UsedSlots = 1;
}

void AppendEntry(CatalogueEntry& entry, std::u16string_view name) {
    entry.NameOffset = Engine.NamesEnd;
    entry.NameLength = static_cast<std::uint16_t>(name.size());
    const ConstBytes nameBytes(reinterpret_cast<const std::uint8_t*>(name.data()),
                               2 * std::min(name.size(), kMaxNameUnits));
    WriteEntry(entry);
    WritePaged(*Engine.NameFile, Engine.NamesEnd, nameBytes);
    Engine.NamesEnd += static_cast<std::uint32_t>(nameBytes.size());
}

void FinishCatalogue(std::uint32_t nextEntryId) {
    if (Engine.Folders->HasPlaceholders()) {
        AppendLostFolders(nextEntryId);
    }
    FlushFiles();
}

} // namespace thntfs
