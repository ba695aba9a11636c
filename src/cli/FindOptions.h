#pragma once

#include "catalogue/FindCriteria.h"

namespace CLI {
class App;
} // namespace CLI

namespace thntfs {

/// Gives a command the options that say what entries must be like. `criteria` outlives the command.
void AddFindCriteria(CLI::App& command, FindCriteria& criteria);

/// The pattern for names, as an option; without it every name does.
void AddNamePattern(CLI::App& command, FindCriteria& criteria);

/// Whether one of these options has been given.
bool HasFindCriteria(const CLI::App& command);

} // namespace thntfs
