#pragma once

#include "catalogue/Catalogue.h"
#include "platform/files/WorkFolder.h"
#include "support/EngineFixture.h"

namespace thntfs::test {

/// The engine with a folder of its own for the catalogue.
class CatalogueFixture : public EngineFixture {
protected:
    CatalogueFixture() {
        EXPECT_EQ(folder_.Create(), kErrorNone);
        Engine.CatalogueFolder = folder_.Path();
    }
    ~CatalogueFixture() override {
        CloseCatalogue();
        Engine.CatalogueFolder.clear();
    }

    [[nodiscard]] static ByteVector Stored(const char* name) {
        return ReadFileBytes(Engine.CatalogueFolder + name);
    }
    [[nodiscard]] static FolderBlock StoredBlockAt(std::uint32_t offset) {
        return DecodeBlock(Part(Stored(kTreeFileName), offset, kStoredBlockBytes));
    }
    [[nodiscard]] static CatalogueEntry StoredEntryAt(std::uint32_t entryId) {
        return DecodeEntry(Part(Stored(kEntryFileName), entryId * kStoredEntryBytes, kStoredEntryBytes));
    }

private:
    WorkFolder folder_;
};

/// A catalogue written by hand, entry by entry, as a scan does it.
class HandWritten {
public:
    HandWritten() { EXPECT_EQ(CreateCatalogue(), 1); }

    /// A folder with a chain of its own below another one; gives its node.
    FolderIndexNode& AddFolder(FolderIndexNode& parent, std::uint32_t number, std::u16string_view name,
                               bool live = true, std::uint64_t size = 0) {
        FolderIndexNode& node = *Engine.Folders->FindOrAddFolder(number).Node;
        BeginFolderBlock(node);
        node.EntryId = next_;
        CatalogueEntry entry = {.Size = size, .RecordNumber = number, .BlockOffset = node.BlockOffset};
        entry.Flags = kFlagFolder | (live ? kFlagLive : 0);
        AddEntry(parent, entry, name);
        return node;
    }

    /// A file; gives its EntryId.
    std::uint32_t AddFile(FolderIndexNode& parent, std::u16string_view name, std::uint64_t size = 0) {
        return AddEntry(parent, {.Size = size, .RecordNumber = 1000 + next_, .Flags = kFlagLive}, name);
    }

    /// Gives the EntryId. A ParentNumber of 0 becomes that of the parent, a RecordSector of 0 becomes 1.
    std::uint32_t AddEntry(FolderIndexNode& parent, CatalogueEntry entry, std::u16string_view name) {
        entry.EntryId = next_;
        entry.ParentNumber = entry.ParentNumber == 0 ? parent.RecordNumber : entry.ParentNumber;
        entry.RecordSector = entry.RecordSector == 0 ? 1 : entry.RecordSector;
        AppendEntry(entry, name);
        AddChild(parent, next_);
        return next_++;
    }

    static FolderIndexNode& Root() { return *Engine.Folders->FindOrAddFolder(5).Node; }
    static FolderIndexNode& Top() { return *Engine.Folders->FindOrAddFolder(0).Node; }

    /// Ends the writing and opens the catalogue for reading.
    void Finish() const {
        FinishCatalogue(next_);
        CloseCatalogue();
        EXPECT_EQ(OpenCatalogue(), 1);
    }

private:
    std::uint32_t next_ = kFirstEntryId;
};

} // namespace thntfs::test
