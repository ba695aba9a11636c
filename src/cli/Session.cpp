#include "cli/Session.h"

#include "catalogue/Catalogue.h"
#include "cli/ExitCode.h"
#include "cli/OpenMediumStep.h"
#include "cli/Output.h"
#include "cli/ScanInfoSteps.h"
#include "cli/ScanStep.h"
#include "cli/SearchMedium.h"
#include "cli/VolumeChoice.h"
#include "content/WorkPlace.h"
#include "engine/EngineState.h"
#include "partitions/ExamineVolumes.h"
#include "partitions/ReadVolumes.h"
#include "platform/system/Interrupt.h"
#include "scaninfo/JobLog.h"
#include "scaninfo/PartitionInfoFile.h"
#include "scaninfo/TreeInfoFile.h"

namespace thntfs {

Session::Session(const Options& options)
    : options_(options) {
    OnInterrupt(Engine.ScanRunFlag);
}

Session::~Session() {
    Host.Bar.End();
    Host.TellSuppressed();
    CloseCatalogue();
    ResetEngineState();
}

const std::string& Session::MediumPath() const {
    return saved_.Kind == ScanInfoKind::None ? options_.Medium : saved_.Medium;
}

int Session::OpenMedium() {
    saved_ = ProbeScanInfo(options_.Medium);
    return RunSteps([&] { return CheckSavedResultWords(options_, saved_.Kind); },
                    [&] { return CheckSaveInfo(options_, MediumPath()); },
                    [&] {
                        return saved_.Kind == ScanInfoKind::None ? OpenWantedMedium()
                                                                 : LoadSavedResult(saved_.Kind);
                    });
}

int Session::LoadSavedResult(ScanInfoKind kind) {
    return kind == ScanInfoKind::Tree ? LoadTree() : LoadPartitions();
}

int Session::LoadTree() {
    if (const int code = MakeCatalogueFolder(); code != kExitDone) {
        return code;
    }
    bool accepted = true;
    const ScanInfoResult result = LoadTreeInfo(options_.Medium, {}, [&](const MediumMatch& match) {
        TellChangedMedium();
        accepted = AcceptMedium(options_, match);
        return accepted;
    });
    if (!accepted) {
        return kExitWrongWords;
    }
    if (!result.Done) {
        return TellLoadFailure(options_.Medium, result);
    }
    if (options_.Chosen == Command::Partitions && Engine.SourceDisk.Partitions.empty()) {
        return TellNoVolume();
    }
    SetUnlessInterrupted(Engine.ScanRunFlag);
    return kExitDone;
}

// The volume is taken while the load still runs: the log tells of the choice first, and then that the load is
// done.
int Session::LoadPartitions() {
    const ScanInfoResult result = LoadPartitionInfo(options_.Medium, [this] {
        TellChangedMedium();
        ExamineVolumes([] { return !WasInterrupted(); });
        if (options_.Chosen != Command::Partitions && !Engine.SourceDisk.Partitions.empty()) {
            volumeTaken_ = TakeWantedVolume(options_, Host, volumeNumber_);
        }
    });
    if (!result.Done) {
        return TellLoadFailure(options_.Medium, result);
    }
    return Engine.SourceDisk.Partitions.empty() ? TellNoVolume() : int{kExitDone};
}

int Session::TellNoVolume() { return Refuse(options_.Medium + " holds no volume."); }

int Session::OpenWantedMedium() {
    if (const int code = OpenMediumOrTell(options_.Medium); code != kExitDone) {
        return code;
    }
    if (Engine.SourceDisk.TotalSectors == 0 &&
        (options_.Search || ScanInfoKindOfName(options_.Medium) == ScanInfoKind::None)) {
        return Refuse(options_.Medium + " is empty: there is not one sector to read.");
    }
    return options_.Search ? SearchVolumes() : ReadTables();
}

int Session::SearchVolumes() {
    LogMediumChosen(options_);
    const int code = SearchMedium(options_, Host);
    complete_ = !Engine.Losses.Any();
    return code;
}

int Session::ReadTables() {
    const bool found = ReadVolumes();
    if (WasInterrupted()) {
        return TellEarlyStop();
    }
    if (found) {
        LogMediumChosen(options_);
        return kExitDone;
    }
    const ScanInfoKind kind = ScanInfoKindOfName(options_.Medium);
    return kind == ScanInfoKind::None
               ? TellNoVolumeInTable(options_)
               : LoadSavedResult(kind); // its first bytes are lost, which the load tells
}

int Session::OpenVolume() {
    if (saved_.Kind == ScanInfoKind::Tree) {
        return kExitDone;
    }
    return volumeTaken_ ? *volumeTaken_ : TakeWantedVolume(options_, Host, volumeNumber_);
}

int Session::MakeCatalogueFolder() {
    const WorkPlace place = MakeWorkFolder(folder_, MediumPath());
    if (!place.Told.empty()) {
        PrintMessage(place.Told);
    }
    if (place.Code != kErrorNone) {
        return kExitFailed;
    }
    Engine.CatalogueFolder = folder_.Path();
    return kExitDone;
}

int Session::ScanVolume() {
    if (saved_.Kind == ScanInfoKind::Tree) {
        return kExitDone;
    }
    if (const int code = MakeCatalogueFolder(); code != kExitDone) {
        return code;
    }
    SetUnlessInterrupted(Engine.ScanRunFlag);
    BeginWantedScan(options_, volumeNumber_);
    if (CreateCatalogue() == 0) {
        return TellNoCatalogue();
    }
    complete_ = RunWantedScan(options_, Host, volumeNumber_);
    CloseCatalogue();
    Host.Bar.End();
    if (!complete_) {
        PrintMessage(options_.Chosen == Command::Save ? "Stopped: the volume was not scanned to its end."
                                                      : "Stopped: what was found so far is shown.");
    }
    complete_ = complete_ && !Host.HadFatal() && !Engine.Losses.Any();
    const int code = TellScanLosses(options_, Host);
    return code == kExitDone ? ReopenCatalogue() : code;
}

// The line of the log says that the tree is being filled; here it is only opened, and filled as it is
// printed.
int Session::ReopenCatalogue() {
    if (!options_.Turbo) {
        LogTreeFillStarted();
    }
    if (OpenCatalogue() == 0) {
        return TellNoCatalogue();
    }
    if (!options_.Turbo) {
        LogTreeFillEnded();
    }
    return kExitDone;
}

int Session::TellNoCatalogue() {
    LogNoCatalogue();
    return Refuse("Supporting Files couldn't be opened");
}

int Session::OpenCatalogueOfMedium() {
    return RunSteps([&] { return OpenMedium(); }, [&] { return OpenVolume(); }, [&] { return ScanVolume(); });
}

} // namespace thntfs
