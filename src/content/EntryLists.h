#pragma once

#include "content/ExactFile.h"

#include <string>
#include <string_view>

namespace thntfs {

// Lists of entries for other programs, line by line, UTF-8. Paths are as EntryWalk gives them: none begins
// with a sign that a spreadsheet would take for a formula.

/// The columns of AppendEntryCsv, with the line end.
inline constexpr std::string_view kEntryCsvHeader =
    "Path,Folder,Deleted,Size,Created,Accessed,Condition,Share,Record,Parent\r\n";

/// Appends an entry's line of comma-separated values (RFC 4180). Folder and Deleted are 1 or 0, Size is in
/// bytes, dates are YYYY-MM-DD or empty, Condition is a word of ConditionWord or empty, Share the percentage
/// of a file that is partly there.
void AppendEntryCsv(std::string& out, const CatalogueItem& item, const std::string& path);

/// Writes lines of a body file, which mactime and other tools that lay out times read:
/// MD5|name|inode|mode|UID|GID|size|atime|mtime|ctime|crtime. MD5 is 0, inode the number of the record, and
/// of the mode the kind alone is known. Times are seconds since 1970, from the entry's own record; 0 where it
/// can't be read, is another file's by now, or tells of none. Outlives no catalogue.
class BodyFileLines {
public:
    /// Appends an entry's line. Reads its record by the rule of ReadSectors; CUserException is passed on.
    void Append(std::string& out, const CatalogueItem& item, const std::string& path);

private:
    ExactFile file_;
};

} // namespace thntfs
