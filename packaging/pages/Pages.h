#pragma once

#include <string>

namespace thntfs {

struct ProgramWords;

/// The manual page of section 1, in the man macros of roff.
std::string ManualPage(const ProgramWords& program);

// Completion for a shell: of commands, options, values that are words of a list, files and media. Paths
// within a medium aren't offered, since that would take a scan.

std::string BashCompletion(const ProgramWords& program);
std::string ZshCompletion(const ProgramWords& program);
std::string FishCompletion(const ProgramWords& program);

} // namespace thntfs
