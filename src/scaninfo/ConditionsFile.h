#pragma once

#include "platform/system/ErrorCodes.h"

#include <string>

namespace thntfs {

// The file beside a tree scan information file that keeps what is still there of the files in its catalogue
// (catalogue/Conditions.h). docs/formats/conditions.md shows its bytes.

inline constexpr const char* kConditionsExtension = ".conditions";

/// Writes the conditions of the open catalogue beside a tree scan information file that has just been
/// written; where there are none, nothing. An older one of its name is replaced in one step, but not a file
/// that is none: that gives kErrorFileExists. Gives 0 or the code of what failed.
ErrorCode SaveConditions(const std::string& treeInfoPath);

/// Takes the conditions that were saved with a tree scan information file. Where there are none, or they are
/// damaged, or of another file, all entries stay without. Never fails.
void LoadConditions(const std::string& treeInfoPath);

} // namespace thntfs
