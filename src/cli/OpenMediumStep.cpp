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
    if (code == kErrorDirectory) {
        return Refuse(path + " is a folder. Give a disk, or a file that holds the image of one.");
    }
    PrintMessage("Cannot open " + path + ": " + OpenErrorText(code));
    if (code == kErrorAccessDenied) {
        PrintMessage(
            "Reading a disk needs the right to do so: run the program as root, for instance with sudo.");
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
