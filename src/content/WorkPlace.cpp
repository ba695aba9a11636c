#include "content/WorkPlace.h"

#include "content/TargetRules.h"

namespace thntfs {

namespace {

PlaceRule AwayFrom(const std::string& medium) {
    return [&medium](const std::string& path) { return CheckTarget(path, {medium, {}, {}}).Allowed(); };
}

std::string WhyPassed(const std::string& place, const std::string& medium) {
    return AwayFrom(medium)(place) ? "anybody may take away what lies in " + place
                                   : place + " lies on the medium that is being read";
}

WorkPlace ResultOf(const WorkFolder& folder, ErrorCode code, const std::string& medium) {
    if (folder.Passed().empty()) {
        return {code, code == kErrorNone ? std::string()
                                         : "Cannot make a temporary folder: " + SystemErrorText(code)};
    }
    const std::string why = WhyPassed(folder.Passed(), medium);
    if (code == kErrorNone) {
        return {code, "Temporary files go to " + folder.Path() + ", since " + why + "."};
    }
    return {code, "There is no place for temporary files: " + why +
                      ", and no other will do. Let TMPDIR name a folder on another disk."};
}

} // namespace

WorkPlace MakeWorkFolder(WorkFolder& folder, const std::string& medium) {
    const ErrorCode code = folder.Create(AwayFrom(medium));
    return ResultOf(folder, code, medium);
}

WorkPlace TakeLastingWorkFolder(WorkFolder& folder, const std::string& medium) {
    const ErrorCode code = folder.CreateLasting(AwayFrom(medium));
    return ResultOf(folder, code, medium);
}

} // namespace thntfs
