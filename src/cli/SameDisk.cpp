#include "cli/SameDisk.h"

#include "cli/Options.h"

namespace thntfs {

TargetVerdict CheckPlace(const Options& options, const std::string& path, const std::string& medium) {
    return CheckTarget(path, {medium, {}, {}, options.SameDisk});
}

std::string SameDiskHint(const Options& options, const TargetVerdict& verdict) {
    const bool copies = options.Chosen == Command::Image || options.Chosen == Command::Clone;
    if (copies || verdict.Why != TargetRefusal::OnMedium) {
        return {};
    }
    return " If there is no other disk and you take that risk, give --same-disk.";
}

} // namespace thntfs
