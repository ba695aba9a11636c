#pragma once

#include "engine/EngineState.h"

#include <string>
#include <vector>

namespace thntfs {

/// One line of the list from which the user chooses a volume.
struct ListedVolume {
    unsigned Number = 0;                           ///< by which it is chosen, counted from 1
    const PartitionCandidate* Candidate = nullptr; ///< of SourceDisk; null for one that can't be taken
    TableVolume Entry; ///< what the partition table says where there is no candidate
};

/// The volumes of SourceDisk with the numbers by which both programs know them. Those of a partition table
/// are numbered by its entries of NTFS's type, the unusable ones too, so that a damaged boot sector doesn't
/// give its volume's number to the next one. Those of a search or a saved list are numbered as they stand
/// there. Valid until the candidate list changes.
std::vector<ListedVolume> ListVolumes();

/// Why a volume of the partition table can't be taken, such as "its boot sector can't be read".
std::string ProblemText(TableVolumeState state);

/// What the search that has run left out, a sentence or two; empty where nothing.
std::string SearchLimitText();

} // namespace thntfs
