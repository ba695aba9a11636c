#pragma once

#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace thntfs {

class File;

/// What a list file is to hold, of the catalogue that is open.
struct EntryListWish {
    bool BodyFile = false; ///< as BodyFileLines, which reads the medium; else as AppendEntryCsv

    // These entries, in this order.
    std::vector<std::uint32_t> EntryIds;
    std::vector<std::uint32_t> FolderOf;  ///< of each: the place of its folder's path in FolderPaths
    std::vector<std::string> FolderPaths; ///< what stands before a name, such as "/Letters/"; narrow text

    std::optional<std::uint32_t> Below; ///< EntryId of a folder: all that is below it instead
};

struct EntryListOutcome {
    ErrorCode Code = kErrorNone; ///< of the first write that has failed
    bool Stopped = false;        ///< by ScanRunFlag
    std::uint64_t Entries = 0;   ///< written

    [[nodiscard]] bool Done() const { return Code == kErrorNone && !Stopped; }
};

/// Writes the list to a file, from its beginning. Reports the progress to the host, and ends when ScanRunFlag
/// is cleared. " Root", which has no path of its own, is left out; an entry that can't be read has shown its
/// box and is missing. CUserException is passed on.
EntryListOutcome WriteEntryList(const EntryListWish& wish, File& file);

} // namespace thntfs
