#include "content/TargetRules.h"

#include "engine/EngineState.h"
#include "images/AnyMedium.h"
#include "platform/files/Paths.h"
#include "platform/media/DiskIdentity.h"
#include "platform/system/Text.h"

#include <algorithm>

namespace thntfs {

namespace {

/// Two paths may name one file that isn't there yet, which only their texts tell.
bool Meets(const std::string& path, const std::string& target) {
    return !target.empty() && (AbsolutePath(BehindLinks(path)) == AbsolutePath(BehindLinks(target)) ||
                               SharesMedium(path, target));
}

} // namespace

TargetVerdict CheckTarget(const std::string& path, const RunPlaces& run) {
    for (const std::string& file : FilesOfMedium(run.Medium)) {
        if (SameMedium(path, file)) {
            return {TargetRefusal::IsMedium, file};
        }
        if (!run.SameDiskKnown && SharesMedium(path, file)) {
            return {TargetRefusal::OnMedium, file};
        }
    }
    if (Meets(path, run.SavedScan)) {
        return {TargetRefusal::IsSavedScan, run.SavedScan};
    }
    const auto met = std::find_if(run.Targets.begin(), run.Targets.end(),
                                  [&path](const std::string& target) { return Meets(path, target); });
    return met == run.Targets.end() ? TargetVerdict{} : TargetVerdict{TargetRefusal::IsOtherTarget, *met};
}

// A description that fills its field may have been cut.
std::string SourceMediumPath() {
    const std::u16string& description = Engine.SourceDisk.Description;
    return description.size() < kMaxDescriptionUnits || Engine.ImagePath.empty() ? NarrowText(description)
                                                                                 : Engine.ImagePath;
}

} // namespace thntfs
