#pragma once

#include <functional>
#include <string>

namespace thntfs {

/// Looks at each candidate of SourceDisk that hasn't been looked at: whether its Master File Table or the
/// mirror stands where it says, its label and the number of its records, all of which go to
/// Engine.VolumeFacts. Some single records are read, in silence. Ends early where `mayGoOn`, which is asked
/// before each, says no, and behind some ten thousand candidates.
void ExamineVolumes(const std::function<bool()>& mayGoOn);

/// The label of the volume in work, as it stands on the medium; empty where there is none or it can't be
/// read. Where it isn't known from ExamineVolumes, some single records are read, in silence.
std::u16string LabelOfVolumeInWork();

/// Takes the volume in VolumeParams into work as LocateMft does. Where that finds no table, its record is
/// taken wherever it stands by name, whatever times it has.
bool LocateTable();

} // namespace thntfs
