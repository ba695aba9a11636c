#pragma once

#include "catalogue/Conditions.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace thntfs {

struct CatalogueItem;

/// A row of the list: an entry without its name.
struct FileRow {
    std::uint64_t Size = 0;
    std::uint64_t NameStart = 0; ///< in FileRows::Names
    std::uint32_t EntryId = 0;
    std::uint32_t RecordNumber = 0;
    std::uint32_t ParentNumber = 0;
    std::uint32_t FolderId = 0; ///< of a hit: EntryId of the folder that it stands in
    std::uint16_t CreatedDate = 0;
    std::uint16_t AccessedDate = 0;
    std::uint16_t NameUnits = 0;
    bool Folder = false;
    bool Live = false;
    Condition State;
};

struct FileRows {
    std::vector<FileRow> Rows;
    std::u16string Names;

    [[nodiscard]] std::u16string_view Name(std::size_t row) const;
};

/// Appends a row for an entry.
void AppendRow(const CatalogueItem& item, std::uint32_t entryId, FileRows& rows);

/// Lists a folder: its folders, then its files, each in the order of the catalogue. An entry that can't be
/// read has shown its box and is missing; none comes twice. `blockOffset`: byte offset in TreeFile of the
/// folder's first block. `waiting` is called now and then with how many rows there are, and how many there
/// will be, 0 as long as that isn't known. Throws CUserException where a block can't be read.
FileRows ListRows(std::uint32_t blockOffset,
                  const std::function<void(std::size_t done, std::size_t total)>& waiting);

} // namespace thntfs
