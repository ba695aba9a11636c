#include "cli/VolumeChoice.h"

#include "cli/CandidateText.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "engine/ClusterSize.h"
#include "partitions/ExamineVolumes.h"
#include "partitions/OpenSource.h"
#include "partitions/VolumeList.h"
#include "partitions/VolumeText.h"
#include "partitions/WhyNoVolumes.h"
#include "platform/system/Interrupt.h"
#include "scaninfo/JobLog.h"

#include <algorithm>

namespace thntfs {

namespace {

void TellVolumes(const std::string& text, const std::vector<ListedVolume>& volumes) {
    PrintMessage(text);
    for (const ListedVolume& volume : volumes) {
        PrintMessage("  " + VolumeText(volume));
    }
}

// The number where the words give none: that of the only volume, or of the only verified one. 0 where more
// come into question.
unsigned NumberWithoutWords(const std::vector<ListedVolume>& volumes) {
    if (volumes.size() == 1) {
        return 1;
    }
    const ListedVolume* verified = OnlyVerified(volumes);
    if (verified == nullptr) {
        TellVolumes("There are " + std::to_string(volumes.size()) +
                        " partitions; choose one with --partition N:",
                    volumes);
        return 0;
    }
    PrintMessage("Of " + std::to_string(volumes.size()) +
                 " partitions the only verified one is taken: " + VolumeText(*verified));
    return verified->Number;
}

int RefuseVolume(const ListedVolume& volume) {
    const bool encrypted = volume.Entry.State == TableVolumeState::Encrypted;
    return Refuse("Partition " + std::to_string(volume.Number) +
                  " can't be taken: " + ProblemText(volume.Entry.State) +
                  (encrypted ? "." : ". --search thorough looks for its volume."));
}

// Gives the candidate that the words choose; null, with the exit code, where they choose none.
const PartitionCandidate* ChooseVolume(const std::optional<unsigned>& wanted, unsigned& number, int& code) {
    const std::vector<ListedVolume> volumes = ListVolumes();
    number = wanted ? *wanted : NumberWithoutWords(volumes);
    code = kExitWrongWords;
    if (number == 0) {
        return nullptr;
    }
    if (number > volumes.size()) {
        TellVolumes("There is no partition " + std::to_string(number) + "; these were found:", volumes);
        return nullptr;
    }
    const ListedVolume& chosen = volumes[number - 1];
    if (chosen.Candidate == nullptr) {
        code = RefuseVolume(chosen);
    }
    return chosen.Candidate;
}

} // namespace

int TakeWantedVolume(const Options& options, TerminalHost& host, unsigned& number) {
    int code = kExitDone;
    const PartitionCandidate* candidate = ChooseVolume(options.Partition, number, code);
    if (candidate == nullptr) {
        return code;
    }
    LoadVolumeParams(*candidate);
    if (const std::string fault = ClusterFault(); !fault.empty()) {
        return Refuse(fault + " Look for other traces of the volume with --search thorough.");
    }
    if (LocateTable()) {
        host.LogEvent(PartitionChosenEntry(number, *candidate));
        return kExitDone;
    }
    if (WasInterrupted()) {
        return TellEarlyStop();
    }
    return options.Turbo
               ? int{kExitDone}
               : Refuse("Critical structures not found: the Master File Table of this volume can't be "
                        "located, neither where it should be nor by its mirror. --turbo finds its records by "
                        "reading the whole volume.");
}

// A medium that gives nothing at all has no missing table, and searching it would find nothing.
int TellNoVolumeInTable(const Options& options) {
    const MediumAnswer answer = AskMedium();
    if (!answer.Answers) {
        return Refuse(options.Medium + " can't be read: " + SystemErrorText(answer.FirstSector) +
                      " If it is a disk, look whether it is still attached.");
    }
    const std::vector<ListedVolume> volumes = ListVolumes();
    const auto isEncrypted = [](const ListedVolume& volume) {
        return volume.Entry.State == TableVolumeState::Encrypted;
    };
    if (answer.FirstSector != kErrorNone) {
        PrintMessage("The partition table of " + options.Medium +
                     " can't be read: " + SystemErrorText(answer.FirstSector));
    } else if (std::none_of(volumes.begin(), volumes.end(), isEncrypted)) {
        PrintMessage("No NTFS volume stands in the partition table of " + options.Medium + "." +
                     (volumes.empty() ? " " + WhyNoVolumes() : ""));
    }
    TellUnusableVolumes();
    if (!volumes.empty() && std::all_of(volumes.begin(), volumes.end(), isEncrypted)) {
        return kExitFailed;
    }
    return Refuse("Use --search quick or --search thorough to find volumes that the table doesn't name.");
}

int TellEarlyStop() { return Refuse("Stopped before the volume was found.", kExitDoneInPart); }

} // namespace thntfs
