#pragma once

#include "partitions/VolumeList.h"

#include <nlohmann/json.hpp>
#include <string>

namespace thntfs {

/// One candidate as a line for people.
std::string CandidateText(unsigned number, const PartitionCandidate& candidate);

/// One candidate as a JSON object.
nlohmann::ordered_json CandidateJson(unsigned number, const PartitionCandidate& candidate);

/// The same of a line of the list of volumes, which may be one that can't be taken.
std::string VolumeText(const ListedVolume& volume);
nlohmann::ordered_json VolumeJson(const ListedVolume& volume);

/// Says which volumes of the list can't be taken, why, and what to do now.
void TellUnusableVolumes();

} // namespace thntfs
