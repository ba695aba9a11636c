#pragma once

#include "partitions/VolumeList.h"

#include <nlohmann/json.hpp>
#include <string>

namespace thntfs {

/// A line of the list of volumes, which may be one that can't be taken, for people and as a JSON object.
std::string VolumeText(const ListedVolume& volume);
nlohmann::ordered_json VolumeJson(const ListedVolume& volume);

/// Says which volumes of the list can't be taken, why, and what to do now.
void TellUnusableVolumes();

} // namespace thntfs
