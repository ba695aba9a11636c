#include "scans/RecordCataloguing.h"

#include "catalogue/Catalogue.h"
#include "platform/system/Text.h"

#include <new>

namespace thntfs {

namespace {

// The parent may come later, earlier or never: until its own record is met its node is a placeholder.
FolderIndexNode& ParentNode(std::uint32_t parentNumber) {
    const FolderTree::Found parent = Engine.Folders->FindOrAddPlaceholder(parentNumber);
    EnsureFolderBlock(*parent.Node);
    return *parent.Node;
}

void WriteEntry(DecodedEntry& entry, std::uint32_t& nextEntryId) {
    AppendEntry(entry, entry.Name());
    ++nextEntryId;
}

void CatalogueFile(DecodedEntry& entry, std::uint32_t& nextEntryId) {
    entry.EntryId = nextEntryId;
    WriteEntry(entry, nextEntryId);
    try {
        AddChild(ParentNode(entry.ParentNumber), entry.EntryId);
        for (const std::uint32_t parent : entry.FurtherParents) {
            Engine.FurtherParents.push_back({entry.EntryId, parent});
        }
    } catch (const std::bad_alloc&) {
        // The entry stands in no chain, or its further names stay unknown.
    }
}

} // namespace

void NameNameless(DecodedEntry& entry) {
    if (entry.NameLength == 0) {
        entry.SetName(WideText("#" + std::to_string(entry.RecordNumber)));
    }
}

void CatalogueFolder(DecodedEntry& entry, std::uint32_t& nextEntryId) try {
    FolderIndexNode& parent = ParentNode(entry.ParentNumber);
    const FolderTree::Found folder = Engine.Folders->FindOrAddFolder(entry.RecordNumber);
    if (!folder.Added && folder.Node->Placeholder == 0) {
        return;
    }
    folder.Node->Placeholder = 1; // until its entry stands: without one it ends as a lost folder
    EnsureFolderBlock(*folder.Node);
    entry.EntryId = nextEntryId;
    entry.BlockOffset = folder.Node->BlockOffset;
    WriteEntry(entry, nextEntryId);
    folder.Node->Placeholder = 0;
    folder.Node->EntryId = entry.EntryId;
    AddChild(parent, entry.EntryId);
} catch (const std::bad_alloc&) {
    // The folder isn't linked.
}

void CatalogueRecord(DecodedEntry& entry, bool directory, std::uint32_t& nextEntryId) {
    NameNameless(entry);
    if (directory) {
        CatalogueFolder(entry, nextEntryId);
    } else {
        CatalogueFile(entry, nextEntryId);
    }
}

} // namespace thntfs
