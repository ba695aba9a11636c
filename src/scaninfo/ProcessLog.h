#pragma once

#include "engine/Host.h"
#include "platform/system/ErrorCodes.h"

#include <string>
#include <vector>

namespace thntfs {

class File;

/// The running account of what the system did: a row for each record, in the order of arrival.
/// docs/formats/process-log.md shows the bytes of its file.
class ProcessLog {
public:
    /// Adds a row. Its Time becomes the present local time, whatever the record holds.
    void Add(ProcessLogEntry entry);
    void Clear() { rows_.clear(); }

    [[nodiscard]] const std::vector<ProcessLogEntry>& Rows() const { return rows_; }

private:
    std::vector<ProcessLogEntry> rows_;
};

/// Name that the save dialog suggests.
inline constexpr const char* kSuggestedLogName = "Tarnholt Volume Salvage (NTFS) ver 2.0.1 Process Log.txt";

/// The log's text file, in its parts: what stands in front of the first row, and a row. Lines end in CR LF.
std::string LogHeadText();
std::string LogRowText(const ProcessLogEntry& row);

/// Writes the whole text to a file that has just been created. Gives 0 or the failure's code.
ErrorCode WriteLogText(const ProcessLog& log, File& file);

} // namespace thntfs
