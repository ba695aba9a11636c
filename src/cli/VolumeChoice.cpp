#include "cli/VolumeChoice.h"

#include "cli/CandidateText.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "engine/ClusterSize.h"
#include "engine/LocateMft.h"
#include "partitions/OpenSource.h"
#include "partitions/VolumeList.h"
#include "platform/system/Interrupt.h"
#include "scaninfo/JobLog.h"

namespace thntfs {

namespace {

void TellVolumes(const std::string& text, const std::vector<ListedVolume>& volumes) {
    PrintMessage(text);
    for (const ListedVolume& volume : volumes) {
        PrintMessage("  " + VolumeText(volume));
    }
}

// Gives the candidate that the words choose; null, with the exit code, where they choose none.
const PartitionCandidate* ChooseVolume(const std::optional<unsigned>& wanted, int& code) {
    const std::vector<ListedVolume> volumes = ListVolumes();
    const unsigned number = wanted.value_or(1);
    code = kExitWrongWords;
    if (!wanted && volumes.size() > 1) {
        TellVolumes("There are " + std::to_string(volumes.size()) +
                        " partitions; choose one with --partition N:",
                    volumes);
        return nullptr;
    }
    if (number > volumes.size()) {
        TellVolumes("There is no partition " + std::to_string(number) + "; these were found:", volumes);
        return nullptr;
    }
    const ListedVolume& chosen = volumes[number - 1];
    if (chosen.Candidate == nullptr) {
        code = Refuse("Partition " + std::to_string(number) + " can't be taken: " +
                      ProblemText(chosen.Entry.State) + ". --search thorough looks for its volume.");
    }
    return chosen.Candidate;
}

} // namespace

int TakeWantedVolume(const Options& options, TerminalHost& host) {
    int code = kExitDone;
    const PartitionCandidate* candidate = ChooseVolume(options.Partition, code);
    if (candidate == nullptr) {
        return code;
    }
    LoadVolumeParams(*candidate);
    if (const std::string fault = ClusterFault(); !fault.empty()) {
        return Refuse(fault + " Look for other traces of the volume with --search thorough.");
    }
    if (LocateMft()) {
        host.LogEvent(PartitionChosenEntry(options.Partition.value_or(1), *candidate));
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
    if (answer.FirstSector != kErrorNone) {
        PrintMessage("The partition table of " + options.Medium +
                     " can't be read: " + SystemErrorText(answer.FirstSector));
    } else {
        PrintMessage("No NTFS volume stands in the partition table of " + options.Medium + ".");
    }
    TellUnusableVolumes();
    return Refuse("Use --search quick or --search thorough to find volumes that the table doesn't name.");
}

int TellEarlyStop() { return Refuse("Stopped before the volume was found.", kExitDoneInPart); }

} // namespace thntfs
