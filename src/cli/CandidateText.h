#pragma once

#include "engine/StoredRecords.h"

#include <nlohmann/json.hpp>
#include <string>

namespace thntfs {

/// One candidate as a line for people.
std::string CandidateText(unsigned number, const PartitionCandidate& candidate);

/// One candidate as a JSON object.
nlohmann::ordered_json CandidateJson(unsigned number, const PartitionCandidate& candidate);

} // namespace thntfs
