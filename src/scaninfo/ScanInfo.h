#pragma once

#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <string>

namespace thntfs {

/// How a load or a save of a scan information file ended.
struct ScanInfoResult {
    bool Done = false;
    std::string Text;              ///< the first column of its last line in the process log
    ErrorCode Code = kErrorNone;   ///< of the call that failed; 0 where the file isn't what it should be
    ErrorCode Beside = kErrorNone; ///< why the file that belongs beside one that was saved could not be
    std::string Medium;            ///< path of the medium where that is what couldn't be opened, else empty
};

enum class ScanInfoKind { None, Tree, Partitions };

/// What a file says that it is, before it is loaded.
struct ScanInfoProbe {
    ScanInfoKind Kind = ScanInfoKind::None;
    std::string Medium; ///< path of the medium that it was made from; empty where the file ends before it
};

/// Looks at the first bytes of a path. Only an ordinary file that begins with one of the two magic numbers is
/// a scan information file, whatever its name.
ScanInfoProbe ProbeScanInfo(const std::string& path);

/// The same by the end of a file's name, for a file whose first bytes are lost.
ScanInfoKind ScanInfoKindOfName(const std::string& path);

/// The log's text for a file that isn't a scan information file of this kind.
const char* InvalidScanInfoText(ScanInfoKind kind);

/// True where a stored Description can hold the absolute form of a medium's path, so that a load finds it
/// again: at most 255 UTF-16 units, and no bytes that aren't valid UTF-8.
bool DescriptionFits(const std::string& mediumPath);

} // namespace thntfs
