#include "cli/ScanInfoSteps.h"

#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/SameDisk.h"
#include "engine/EngineState.h"
#include "partitions/OpenSource.h"
#include "platform/files/Paths.h"
#include "platform/files/ReplacementFile.h"
#include "platform/media/Medium.h"
#include "platform/system/Text.h"
#include "scaninfo/ConditionsFile.h"
#include "scaninfo/PartitionInfoFile.h"
#include "scaninfo/ScanInfoNames.h"
#include "scaninfo/TreeInfoFile.h"

namespace thntfs {

namespace {

int RefuseWord(const Options& options, const char* word, const char* why) {
    return Refuse(std::string(word) + " can't be used with " + options.Medium + ", " + why, kExitWrongWords);
}

int TellFailedSave(const std::string& target, const std::string& reason) {
    return Refuse("Cannot save scan information to " + target + ": " + reason);
}

ErrorCode TryToCreate(const std::string& target) {
    ReplacementFile file;
    return file.Create(target);
}

} // namespace

int CheckSavedResultWords(const Options& options, ScanInfoKind kind) {
    constexpr const char* kScanned = "which holds the result of a scan that was made";
    if (kind == ScanInfoKind::Tree && options.Partition) {
        return RefuseWord(options, "--partition", "which holds the scan of one volume");
    }
    if (kind == ScanInfoKind::Tree && options.Turbo) {
        return RefuseWord(options, "--turbo", kScanned);
    }
    if (kind == ScanInfoKind::Tree && options.Deep) {
        return RefuseWord(options, "--deep", kScanned);
    }
    if (kind == ScanInfoKind::Tree && options.Search) {
        return RefuseWord(options, "--search", kScanned);
    }
    if (kind == ScanInfoKind::Partitions && options.Search) {
        return RefuseWord(options, "--search", "which holds the volumes that were found");
    }
    return kExitDone;
}

int CheckSaveInfo(const Options& options, const std::string& medium) {
    if (!options.SaveInfo) {
        return kExitDone;
    }
    const std::string target = SaveInfoTarget(options);
    if (!DescriptionFits(medium)) {
        PrintMessage(
            "Scan information can't be saved for " + AbsolutePath(medium) + ": its path has more than " +
            std::to_string(kMaxDescriptionUnits) +
            " characters, or bytes that are no text. Open the medium by a link with a shorter path.");
        return kExitFailed;
    }
    if (const TargetVerdict verdict = CheckPlace(options, target, medium); !verdict.Allowed()) {
        return TellFailedSave(target,
                              "it lies on the medium that is being read; choose a place on another disk." +
                                  SameDiskHint(options, verdict));
    }
    const ErrorCode code = TryToCreate(target);
    return code == kErrorNone ? int{kExitDone} : TellFailedSave(target, SystemErrorText(code));
}

std::string SaveInfoTarget(const Options& options) {
    return ScanInfoPlaceOf(*options.SaveInfo, options.Chosen == Command::Partitions ? kPartitionInfoExtension
                                                                                    : kTreeInfoExtension)
        .Target;
}

// The log calls a scan's result "Partition scan information", which would be taken here for the file of
// volumes.
int SaveScanInfo(const Options& options, int code) {
    if (!options.SaveInfo) {
        return code;
    }
    const ScanInfoResult result = options.Chosen == Command::Partitions ? SavePartitionInfo(*options.SaveInfo)
                                                                        : SaveTreeInfo(*options.SaveInfo);
    const std::string target = SaveInfoTarget(options);
    if (!result.Done) {
        return TellFailedSave(target, result.Code == kErrorNone ? result.Text : SystemErrorText(result.Code));
    }
    PrintMessage("Scan information saved to " + target);
    if (result.Beside != kErrorNone) {
        PrintMessage("A later run can't tell from it in what condition deleted files are: " + target +
                     kConditionsExtension + " was not written: " + SystemErrorText(result.Beside));
        return code == kExitDone ? int{kExitDoneInPart} : code;
    }
    return code;
}

int TellLoadFailure(const std::string& path, const ScanInfoResult& result) {
    PrintMessage(path + ": " + result.Text);
    if (!result.Medium.empty()) {
        PrintMessage("The medium from which it was made, " + result.Medium +
                     ", can't be opened: " + OpenErrorText(result.Code));
    } else if (result.Code != kErrorNone) {
        PrintMessage(SystemErrorText(result.Code));
    }
    return kExitFailed;
}

bool AcceptMedium(const Options& options, const MediumMatch& match) {
    const std::string medium = NarrowText(Engine.SourceDisk.Description);
    if (const std::string text = MediumMatchText(match); !text.empty()) {
        PrintMessage(medium + ": " + text);
    }
    if (!match.NeedsConsent() || options.Anyway) {
        return true;
    }
    PrintMessage("Nothing was done. Put the right medium back under this path, scan this one anew, or give "
                 "--anyway to go on with it as it is.");
    return false;
}

void TellChangedMedium() {
    const DiskRecord& disk = Engine.SourceDisk;
    const std::uint64_t sectors = disk.MediaHandle->SizeBytes() / disk.BytesPerSector;
    if (sectors != disk.TotalSectors) {
        PrintMessage(
            NarrowText(disk.Description) + " has " + std::to_string(sectors) + " sectors now; it had " +
            std::to_string(disk.TotalSectors) +
            " when the information was saved. It may be another disk: what is read from it may be wrong.");
    }
}

} // namespace thntfs
