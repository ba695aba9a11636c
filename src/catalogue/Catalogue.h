#pragma once

#include "catalogue/FolderTree.h"
#include "engine/CatalogueRecords.h"
#include "engine/EngineState.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace thntfs {

// The catalogue: three files in EngineState::CatalogueFolder. docs/formats/catalogue.md shows their bytes.

/// Names of the three files, with the separator in front.
inline constexpr const char* kTreeFileName = "/NST.THT";
inline constexpr const char* kNameFileName = "/NSN.THT";
inline constexpr const char* kEntryFileName = "/NSE.THT";

/// The first EntryId that a scan may give.
inline constexpr std::uint32_t kFirstEntryId = 2;

/// Creates the three files with their seed entries, the top "#" and " Root", and the folder tree. Gives 1, or
/// 0 where a file can't be created or written.
int CreateCatalogue();

/// Opens the three files for reading. Gives 1, or 0 where one can't be opened.
int OpenCatalogue();

/// Writes what is still buffered, frees the folder tree and closes the files. A write that fails shows its
/// box. Always gives 1.
int CloseCatalogue();

/// Gives a folder that has just been added to the tree a new empty chain.
void BeginFolderBlock(FolderIndexNode& node);

/// Gives a folder a chain where it has none: it has just been added, or there was no memory for one then.
void EnsureFolderBlock(FolderIndexNode& node);

/// Adds a child to a folder's chain, which begins here where there is none.
void AddChild(FolderIndexNode& node, std::uint32_t entryId);

/// Hints that a child will soon be added to the folder with this number: fetches the place from memory.
void PrefetchChain(std::uint32_t recordNumber);

/// Appends an entry and its name. The entry's EntryId must be the number of entries written so far; its
/// NameOffset is set here, and NamesEnd advances.
void AppendEntry(CatalogueEntry& entry, std::u16string_view name);

/// Turns all remaining placeholders into lost folders, "#" and the number, under the top, and writes what is
/// buffered. `nextEntryId` is the next free one.
void FinishCatalogue(std::uint32_t nextEntryId);

} // namespace thntfs
