#pragma once

#include <string>
#include <vector>

namespace thntfs {

// What may be written where while files are got back: recovered files, scan information, logs and the
// catalogue. What a copy of a whole disk may be written to stands in disktools/CopyRules.h.

/// Why nothing may be written at a path.
enum class TargetRefusal {
    None,         ///< it may
    IsMedium,     ///< the path is the medium under recovery: its image, its device, or a part of that
    OnMedium,     ///< the path lies on the medium's disk; the one refusal that the user may overrule
    IsSavedScan,  ///< it is the scan information file that stands for the medium
    IsOtherTarget ///< something else that the same run is going to write is there, or would be written over
                  ///< it
};

struct TargetVerdict {
    TargetRefusal Why = TargetRefusal::None;
    std::string What; ///< path of the medium, the file or the other target that is in the way

    [[nodiscard]] bool Allowed() const { return Why == TargetRefusal::None; }
};

/// Paths of what a run reads and writes. Each may be empty.
struct RunPlaces {
    std::string Medium;               ///< device or image under recovery
    std::string SavedScan;            ///< scan information file that is read in its place
    std::vector<std::string> Targets; ///< files, and media written over, that the run makes besides
    bool SameDiskKnown = false;       ///< the user knows what is written on the medium's disk may destroy
};

/// Whether a run may write at a path, which need not exist. Links are followed.
TargetVerdict CheckTarget(const std::string& path, const RunPlaces& run);

/// Path of the medium that SourceDisk stands for; empty where none is chosen.
std::string SourceMediumPath();

} // namespace thntfs
