#include "engine/CatalogueRecords.h"

namespace thntfs {

StoredEntry EncodeEntry(const CatalogueEntry& entry) {
    StoredEntry stored{};
    PutNumber(stored, 0, entry.Size);
    PutNumber(stored, 8, entry.RecordSector);
    PutNumber(stored, 16, entry.EntryId);
    PutNumber(stored, 20, entry.RecordNumber);
    PutNumber(stored, 24, entry.ParentNumber);
    PutNumber(stored, 28, entry.BlockOffset);
    PutNumber(stored, 32, entry.NameOffset);
    PutNumber(stored, 36, entry.NameLength);
    PutNumber(stored, 38, entry.Flags);
    PutNumber(stored, 40, entry.CreatedDate);
    PutNumber(stored, 42, entry.AccessedDate);
    return stored;
}

CatalogueEntry DecodeEntry(ConstBytes stored) {
    CatalogueEntry entry;
    entry.Size = U64At(stored, 0);
    entry.RecordSector = U64At(stored, 8);
    entry.EntryId = U32At(stored, 16);
    entry.RecordNumber = U32At(stored, 20);
    entry.ParentNumber = U32At(stored, 24);
    entry.BlockOffset = U32At(stored, 28);
    entry.NameOffset = U32At(stored, 32);
    entry.NameLength = U16At(stored, 36);
    entry.Flags = U16At(stored, 38);
    entry.CreatedDate = U16At(stored, 40);
    entry.AccessedDate = U16At(stored, 42);
    return entry;
}

StoredBlock EncodeBlock(const FolderBlock& block) {
    StoredBlock stored{};
    PutNumber(stored, 0, block.OwnerNumber);
    PutNumber(stored, 4, block.NextBlock);
    for (std::size_t i = 0; i < kSlotsPerBlock; ++i) {
        PutNumber(stored, 8 + 4 * i, block.Slots.at(i));
    }
    return stored;
}

FolderBlock DecodeBlock(ConstBytes stored) {
    FolderBlock block;
    block.OwnerNumber = U32At(stored, 0);
    block.NextBlock = U32At(stored, 4);
    for (std::size_t i = 0; i < kSlotsPerBlock; ++i) {
        block.Slots.at(i) = U32At(stored, 8 + 4 * i);
    }
    return block;
}

} // namespace thntfs
