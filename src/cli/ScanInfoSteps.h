#pragma once

#include "cli/Options.h"
#include "scaninfo/MediumMatch.h"
#include "scaninfo/ScanInfo.h"

#include <string>

namespace thntfs {

// What the terminal program does with scan information files. Each step that can fail gives an exit code, and
// has said on standard error what went wrong.

/// Refuses words that make no sense with a scan information file in place of the medium.
int CheckSavedResultWords(const Options& options, ScanInfoKind kind);

/// Makes sure, before hours of work, that --save-info will be able to write its file and a load to find the
/// medium again. `medium` is the path of the medium itself.
int CheckSaveInfo(const Options& options, const std::string& medium);

/// Absolute path of the file that --save-info writes, with its extension.
std::string SaveInfoTarget(const Options& options);

/// Writes the file where the words ask for it. Gives `code`, or kExitFailed where it couldn't be written.
int SaveScanInfo(const Options& options, int code);

/// Says why a file wasn't loaded. Gives kExitFailed.
int TellLoadFailure(const std::string& path, const ScanInfoResult& result);

/// Says what isn't as it was when a saved scan was made. False where it is so much that --anyway must be
/// given and isn't.
bool AcceptMedium(const Options& options, const MediumMatch& match);

/// Says so where the medium that has just been opened again isn't as large as it was.
void TellChangedMedium();

} // namespace thntfs
