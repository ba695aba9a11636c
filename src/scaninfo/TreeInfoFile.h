#pragma once

#include "scaninfo/MediumMatch.h"
#include "scaninfo/ScanInfo.h"

#include <functional>
#include <string>

namespace thntfs {

// The tree scan information file, ".tht": the result of a scan. docs/formats/tree-scan-info.md shows its
// bytes.

/// Writes SourceDisk, its candidates, VolumeParams with its extents and the three catalogue files to a path;
/// a name that doesn't end in ".tht" gets it appended. The engine state isn't changed. An older file of that
/// name stays as it was unless the save succeeds; it doesn't where the catalogue is of another volume than
/// the one in work. Two records go to the process log: at the start, at the
/// end.
ScanInfoResult SaveTreeInfo(const std::string& path);

/// Puts the engine into the state that it was saved in: the medium opened anew by its stored path,
/// candidates, VolumeParams, and the catalogue, written to CatalogueFolder and open for reading. What was
/// loaded or scanned before is gone, whatever happens. After a failure the engine state is reset and no
/// catalogue is open, but the catalogue's files may hold a part of the saved ones. Once all is loaded, `show`
/// is called, which may still fail by an exception. Two records go to the process log.
///
/// Before that `accept` is asked with what the medium and the file have in common; where it gives false, the
/// load has failed. Without it the medium isn't looked at.
ScanInfoResult LoadTreeInfo(const std::string& path, const std::function<void()>& show = {},
                            const std::function<bool(const MediumMatch&)>& accept = {});

} // namespace thntfs
