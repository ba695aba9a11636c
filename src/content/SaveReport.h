#pragma once

#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <memory>
#include <string>

namespace thntfs {

class File;
struct SavedFile;

/// The report of a save: one line of JSON a file, written when its fate is known. However the run ends, the
/// lines that are there are whole.
class SaveReport {
public:
    SaveReport();
    /// Closes the file. One that no line has come into is taken away.
    ~SaveReport();
    SaveReport(const SaveReport&) = delete;
    SaveReport& operator=(const SaveReport&) = delete;

    /// Creates the file. Fails with kErrorFileExists where anything stands under the path.
    ErrorCode Create(const std::string& path);

    void Add(const SavedFile& file);

    /// Waits until the lines are on the device, and keeps the file even without one. Gives the failure of the
    /// first line that could not be written; no further ones were.
    ErrorCode Finish();

private:
    std::string path_;
    std::unique_ptr<File> file_;
    std::uint64_t end_ = 0; ///< of the lines, in bytes
    bool finished_ = false;
    ErrorCode failure_ = kErrorNone;
};

/// The line of a file, with its end.
std::string ReportLine(const SavedFile& file);

} // namespace thntfs
