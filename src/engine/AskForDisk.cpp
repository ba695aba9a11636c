#include "engine/AskForDisk.h"

#include "engine/Host.h"
#include "platform/system/CoreText.h"

#include <utility>

namespace thntfs {

DiskAnswer AskIfRefused(ErrorCode refusal, const std::string& path, DiskUse use) {
    if (refusal != kErrorAccessDenied || !IsBlockDevice(path)) {
        return {{}, refusal};
    }
    DiskAnswer answer = Host().AskForDisk(path, use);
    if (answer.Code == kErrorNone) {
        LogLine("The disk service has opened " + path,
                use == DiskUse::Reading ? "for reading" : "for writing", kLogDone);
    } else if (!answer.Reason.empty()) {
        LogLine("The disk service hasn't opened " + path, answer.Reason, kLogFailed);
    }
    return answer;
}

MediumResult AskIfRefused(MediumResult opened, const std::string& path) {
    if (opened.Error != kErrorAccessDenied) {
        return opened;
    }
    DiskAnswer answer = AskIfRefused(opened.Error, path, DiskUse::Reading);
    return answer.Code == kErrorNone ? OpenMediumOn(std::move(answer.Disk), path, std::move(answer.Turns))
                                     : MediumResult{nullptr, answer.Code};
}

std::string RightsAdvice(ErrorCode code) {
    switch (code) {
    case kErrorAccessDenied:
        return CoreText("Core", "Reading a disk needs the right to do so: run the program as root, for "
                                "instance with sudo. Without root the system's disk service asks for it, "
                                "where the desktop program is installed and UDisks is 2.7.3 or newer.");
    case kErrorCancelled:
        return CoreText("Core", "The system's disk service opens the disk once its question has been "
                                "answered. Try again.");
    case kErrorPrivilegeNotHeld:
        return CoreText("Core",
                        "The system's disk service was asked and doesn't let this user open the disk: "
                        "its rules forbid it, the password was wrong, or nobody could be asked for "
                        "one. An administrator can make an image of the disk, as root, in a terminal.");
    case kErrorServiceNotActive:
        return CoreText("Core", "The system's disk service, which was asked for the disk, doesn't answer any "
                                "more. Try again.");
    default:
        return {};
    }
}

} // namespace thntfs
