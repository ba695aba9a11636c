#pragma once

#include "content/TargetRules.h"

#include <string>

namespace thntfs {

struct Options;

/// Whether a run may write a file besides what it reads from `medium`, as its words have it.
TargetVerdict CheckPlace(const Options& options, const std::string& path, const std::string& medium);

/// What to put behind the text of a refusal: how the user may overrule it, or nothing.
std::string SameDiskHint(const Options& options, const TargetVerdict& verdict);

} // namespace thntfs
