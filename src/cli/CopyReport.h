#pragma once

#include "cli/Output.h"
#include "disktools/CopyMap.h"

#include <string>

namespace thntfs {

/// How a copy ended.
struct CopyReport {
    std::string Work; ///< "Disk Imaging" or "Disk Cloning"
    std::string Source;
    std::string Target;
    std::string MapPath; ///< empty where there is none
    bool Failed = false;
    bool Stopped = false;
};

/// Prints the end of a copy of SourceDisk: what was copied, what could not be read and where.
void PrintCopyReport(Output& output, const CopyReport& report, const CopyMap& map, bool asJson);

} // namespace thntfs
