#pragma once

#include "scaninfo/ScanInfo.h"

#include <functional>
#include <string>

namespace thntfs {

// The partition scan information file, ".thd": the volumes that a search has found.
// docs/formats/partition-scan-info.md shows its bytes.

/// Writes SourceDisk and its candidates to a path; a name that doesn't end in ".thd" gets it appended. The
/// engine state isn't changed. An older file of that name stays as it was unless the save succeeds. Two
/// records go to the process log: at the start, at the end.
ScanInfoResult SavePartitionInfo(const std::string& path);

/// Resets the engine state and loads SourceDisk, with the medium opened anew by its stored path, and the
/// candidates. The catalogue isn't touched. Once all is loaded, `choose` is called, in which the user may
/// take one of the candidates into use: only then follows the record that tells the process log of the
/// success. After a failure the engine state is reset.
ScanInfoResult LoadPartitionInfo(const std::string& path, const std::function<void()>& choose = {});

} // namespace thntfs
