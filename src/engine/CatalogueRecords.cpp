#include "engine/CatalogueRecords.h"

#include "engine/StoredFields.h"

namespace thntfs {

namespace {

template <typename Entry, typename Visitor>
void VisitEntry(Entry& entry, const Visitor& field) {
    field(0, entry.Size);
    field(8, entry.RecordSector);
    field(16, entry.EntryId);
    field(20, entry.RecordNumber);
    field(24, entry.ParentNumber);
    field(28, entry.BlockOffset);
    field(32, entry.NameOffset);
    field(36, entry.NameLength);
    field(38, entry.Flags);
    field(40, entry.CreatedDate);
    field(42, entry.AccessedDate);
}

template <typename Block, typename Visitor>
void VisitBlock(Block& block, const Visitor& field) {
    field(0, block.OwnerNumber);
    field(4, block.NextBlock);
    for (std::size_t i = 0; i < kSlotsPerBlock; ++i) {
        field(8 + 4 * i, block.Slots[i]);
    }
}

} // namespace

StoredEntry EncodeEntry(const CatalogueEntry& entry) {
    StoredEntry stored{};
    EncodeEntryInto(stored, entry);
    return stored;
}

void EncodeEntryInto(Bytes stored, const CatalogueEntry& entry) {
    // One look at the size spares one at each field.
    if (stored.size() >= kStoredEntryBytes) {
        VisitEntry(entry, FieldWriter(stored.first(kStoredEntryBytes)));
    }
}

CatalogueEntry DecodeEntry(ConstBytes stored) {
    CatalogueEntry entry;
    VisitEntry(entry, FieldReader(stored));
    return entry;
}

StoredBlock EncodeBlock(const FolderBlock& block) {
    StoredBlock stored{};
    VisitBlock(block, FieldWriter(stored));
    return stored;
}

FolderBlock DecodeBlock(ConstBytes stored) {
    FolderBlock block;
    VisitBlock(block, FieldReader(stored));
    return block;
}

} // namespace thntfs
