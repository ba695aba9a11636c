#pragma once

#include "catalogue/FindCriteria.h"

namespace CLI {
class App;
} // namespace CLI

namespace thntfs {

/// Gives a command the options that say what entries must be like. `criteria` outlives the command.
void AddFindCriteria(CLI::App& command, FindCriteria& criteria);

} // namespace thntfs
