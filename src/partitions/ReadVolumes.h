#pragma once

#include "engine/EngineState.h"

namespace thntfs {

/// Lists the volumes of SourceDisk by all that names them without a search: first what ReadPartitionTable
/// gives, as it gives it, then what the GUID partition tables name beside it, a volume that fills the whole
/// medium, and volumes whose lost first sector has a copy at their end. All of them are examined
/// (ExamineVolumes). Engine.TableVolumes gets the unusable ones. True if there is a candidate.
bool ReadVolumes();

/// Puts a candidate behind the others, with where it was named.
void AddCandidate(const PartitionCandidate& candidate, VolumeSource source);

} // namespace thntfs
