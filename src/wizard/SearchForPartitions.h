#pragma once

#include <cstdint>

class QWidget;

namespace thntfs {

/// Searches the open medium for volumes: asks for the method and, for a thorough scan, the range, then runs
/// the search in a dialog. All stand over `owner`. Gives false where the user cancelled a question. An
/// aborted search counts: what it found stands in the candidate list.
bool SearchForPartitions(std::uint64_t totalSectors, QWidget* owner);

} // namespace thntfs
