#pragma once

#include "catalogue/NaiveFolderTree.h"
#include "engine/CatalogueRecords.h"
#include "support/VolumeBuilderBytes.h"

#include <map>

namespace thntfs::test {

/// The catalogue's files built in the plainest way: one folder block in memory, stored and loaded each time
/// that another is wanted, and chains walked from their first block. Its bytes are what the engine's must be.
class NaiveCatalogue {
public:
    NaiveCatalogue() {
        AddToTree(0, {0, 0, false});
        AddToTree(5, {1, 128, false});
        current_.Slots[0] = 1;
        Store();
        currentOffset_ = treeEnd_ = 128;
        current_ = {};
        current_.OwnerNumber = 5;
        WriteEntry({.Flags = 0x18}, u"#");
        WriteEntry({.EntryId = 1, .RecordNumber = 5, .BlockOffset = 128, .Flags = 0x18}, u" Root");
    }

    void AddFolder(CatalogueEntry entry, const std::u16string& name) {
        Folder& parent = FindOrAdd(entry.ParentNumber, true);
        const bool known = folders_.count(entry.RecordNumber) != 0;
        Folder& folder = FindOrAdd(entry.RecordNumber, false);
        if (known && !folder.Placeholder) {
            return;
        }
        folder.Placeholder = false;
        folder.EntryId = entry.EntryId = NextId;
        AddChild(entry.ParentNumber, parent, NextId++);
        entry.BlockOffset = folder.BlockOffset;
        WriteEntry(entry, name);
    }

    void AddFile(CatalogueEntry entry, const std::u16string& name) {
        entry.EntryId = NextId++;
        WriteEntry(entry, name);
        AddChild(entry.ParentNumber, FindOrAdd(entry.ParentNumber, true), entry.EntryId);
    }

    void Finish() {
        for (const std::uint32_t number : order_.PreOrder()) {
            const Folder& folder = folders_.at(number);
            if (folder.Placeholder) {
                const std::string text = "#" + std::to_string(number);
                WriteEntry({.EntryId = NextId,
                            .RecordNumber = number,
                            .BlockOffset = folder.BlockOffset,
                            .Flags = 0x10},
                           {text.begin(), text.end()});
                AddChild(0, folders_.at(0), NextId++);
            }
        }
        Store();
    }

    ByteVector Tree;
    ByteVector Entries;
    ByteVector Names;
    std::uint32_t NextId = 2;

private:
    struct Folder {
        std::uint32_t EntryId;
        std::uint32_t BlockOffset;
        bool Placeholder;
    };

    void AddToTree(std::uint32_t number, Folder folder) {
        folders_.emplace(number, folder);
        order_.Insert(number);
    }

    Folder& FindOrAdd(std::uint32_t number, bool placeholder) {
        if (folders_.count(number) == 0) {
            Store();
            treeEnd_ += 128;
            AddToTree(number, {0, treeEnd_, placeholder});
            Begin(number);
        }
        return folders_.at(number);
    }

    void Begin(std::uint32_t owner) {
        currentOffset_ = treeEnd_;
        current_ = {};
        current_.OwnerNumber = owner;
    }

    void AddChild(std::uint32_t number, const Folder& folder, std::uint32_t id) {
        if (current_.OwnerNumber != number) {
            Store();
            Load(folder.BlockOffset);
        }
        while (current_.NextBlock != 0) {
            Load(current_.NextBlock);
        }
        for (std::uint32_t& slot : current_.Slots) {
            if (slot == 0) {
                slot = id;
                return;
            }
        }
        treeEnd_ += 128;
        current_.NextBlock = treeEnd_;
        Store();
        Begin(number);
        current_.Slots[0] = id;
    }

    void Store() {
        Tree.resize(std::max<std::size_t>(Tree.size(), currentOffset_ + 128));
        const StoredBlock stored = EncodeBlock(current_);
        std::copy(stored.begin(), stored.end(), Tree.begin() + currentOffset_);
    }

    void Load(std::uint32_t offset) {
        currentOffset_ = offset;
        current_ = DecodeBlock(Part(Tree, offset, 128));
    }

    void WriteEntry(CatalogueEntry entry, const std::u16string& name) {
        entry.NameOffset = static_cast<std::uint32_t>(Names.size());
        entry.NameLength = static_cast<std::uint16_t>(name.size());
        AppendBytes(Entries, EncodeEntry(entry));
        AppendText(Names, name);
    }

    std::map<std::uint32_t, Folder> folders_;
    NaiveFolderTree order_;
    FolderBlock current_;
    std::uint32_t currentOffset_ = 0;
    std::uint32_t treeEnd_ = 0;
};

} // namespace thntfs::test
