#include "cli/CandidateText.h"
#include "cli/Commands.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/ScanInfoSteps.h"
#include "cli/Session.h"
#include "engine/EngineState.h"
#include "partitions/ExamineVolumes.h"
#include "partitions/VolumeList.h"
#include "partitions/VolumeText.h"
#include "platform/system/Interrupt.h"

#include <algorithm>

namespace thntfs {

namespace {

std::string Indented(const std::string& text) {
    std::string out = "  ";
    for (const char c : text) {
        out += c;
        if (c == '\n') {
            out += "  ";
        }
    }
    return out;
}

// One at a time: a saved list may hold millions.
void PrintCandidates(Output& output, bool asJson) {
    const std::vector<ListedVolume> volumes = ListVolumes();
    for (const ListedVolume& volume : volumes) {
        if (asJson) {
            output.Put(volume.Number == 1 ? "[\n" : ",\n");
            output.Put(Indented(VolumeJson(volume).dump(2)));
        } else {
            output.Put(VolumeText(volume) + "\n");
        }
    }
    if (asJson) {
        output.Put(volumes.empty() ? "[]\n" : "\n]\n");
    }
}

// A saved list has no place for what can't be taken.
void TellSavedNumbers() {
    const std::size_t usable = Engine.SourceDisk.Partitions.size();
    if (ListVolumes().size() != usable) {
        PrintMessage("The saved list holds the usable partitions alone, with the numbers 1 to " +
                     std::to_string(usable) + ".");
    }
}

// Another file system is no fault; what couldn't be read, or had no room, is missing from the list.
int WithMissingVolumes(int code) {
    const auto unread = [](const TableVolume& entry) {
        return entry.State == TableVolumeState::Unreadable || entry.State == TableVolumeState::LostTable;
    };
    const bool missing = Engine.SearchLimits != 0 ||
                         std::any_of(Engine.TableVolumes.begin(), Engine.TableVolumes.end(), unread);
    return code == kExitDone && missing ? int{kExitDoneInPart} : code;
}

} // namespace

int RunPartitions(const Options& options) {
    Session session(options);
    int code = session.OpenMedium();
    ExamineVolumes([] { return !WasInterrupted(); });
    if (!Engine.SourceDisk.Partitions.empty()) {
        TellUnusableVolumes();
        code = SaveScanInfo(options, WithMissingVolumes(code));
        if (options.SaveInfo) {
            TellSavedNumbers();
        }
    }
    Output output;
    if (code == kExitDone || code == kExitDoneInPart || options.Json) {
        PrintCandidates(output, options.Json);
    }
    return output.Finish(code == kExitDone && !session.Complete() ? int{kExitDoneInPart} : code);
}

} // namespace thntfs
