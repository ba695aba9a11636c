#include "cli/OpenMediumStep.h"

#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "partitions/DiskEnumeration.h"
#include "partitions/OpenSource.h"
#include "platform/files/Paths.h"
#include "scaninfo/JobLog.h"

namespace thntfs {

int OpenMediumOrTell(const std::string& path) {
    const ErrorCode code = OpenSource(path);
    if (code == kErrorNone) {
        return kExitDone;
    }
    for (const std::string& line : OpenFailureLines(path, code)) {
        PrintMessage(line);
    }
    return kExitFailed;
}

void LogMediumChosen(const Options& options) {
    const bool searched = options.Search.has_value();
    if (SourceIsDevice()) {
        LogDiskChosen(DiskOfDevice(options.Medium), searched);
    } else {
        LogImageChosen(AbsolutePath(options.Medium), searched);
    }
}

} // namespace thntfs
