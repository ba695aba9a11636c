#pragma once

#include "partitions/VolumeList.h"

#include <nlohmann/json.hpp>

namespace thntfs {

/// A line of the list of volumes, which may be one that can't be taken, as a JSON object.
nlohmann::ordered_json VolumeJson(const ListedVolume& volume);

/// Says which volumes of the list can't be taken, why, and what to do now.
void TellUnusableVolumes();

} // namespace thntfs
