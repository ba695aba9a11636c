#pragma once

#include "engine/EngineState.h"

#include <string>
#include <vector>

namespace thntfs {

/// One line of the list from which the user chooses a volume.
struct ListedVolume {
    unsigned Number = 0;                           ///< by which it is chosen, counted from 1
    const PartitionCandidate* Candidate = nullptr; ///< of SourceDisk; null for one that can't be taken
    VolumeSource Source = VolumeSource::Mbr;
    TableVolume Entry; ///< what the partition table says where there is no candidate
    VolumeFacts Facts; ///< of the candidate
};

/// The volumes of SourceDisk with the numbers by which both programs know them, in their order. Those of the
/// partition tables come first, by their entries, the unusable ones too, so that a damaged boot sector
/// doesn't give its volume's number to the next one. The others follow: verified ones, then those that
/// aren't, each as they stand in the candidate list, then encrypted ones. Valid until the candidate list
/// changes.
std::vector<ListedVolume> ListVolumes();

/// The only verified volume of a list; null where there is none or more than one.
const ListedVolume* OnlyVerified(const std::vector<ListedVolume>& volumes);

/// Sectors by which a volume begins before the medium, which then lacks its first part; 0 for others.
std::uint64_t SectorsBeforeMedium(const PartitionCandidate& volume);

/// What names a volume, such as "GPT", for people.
std::string SourceText(VolumeSource source);

/// Why a volume of the partition table can't be taken, such as "its boot sector can't be read".
std::string ProblemText(TableVolumeState state);

/// What the search that has run left out, a sentence or two; empty where nothing.
std::string SearchLimitText();

} // namespace thntfs
