#include "cli/Session.h"

#include "catalogue/Catalogue.h"
#include "cli/CandidateText.h"
#include "cli/ExitCode.h"
#include "cli/OpenMediumStep.h"
#include "cli/Output.h"
#include "cli/ScanInfoSteps.h"
#include "cli/SearchMedium.h"
#include "content/WorkPlace.h"
#include "engine/ClusterSize.h"
#include "engine/EngineState.h"
#include "engine/LocateMft.h"
#include "partitions/DiskEnumeration.h"
#include "partitions/OpenSource.h"
#include "partitions/PartitionTable.h"
#include "partitions/VolumeList.h"
#include "platform/files/Paths.h"
#include "platform/system/Interrupt.h"
#include "scaninfo/JobLog.h"
#include "scaninfo/PartitionInfoFile.h"
#include "scaninfo/TreeInfoFile.h"
#include "scans/BasicScan.h"
#include "scans/TurboScan.h"

namespace thntfs {

namespace {

void TellVolumes(const std::vector<ListedVolume>& volumes) {
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
        PrintMessage("There are " + std::to_string(volumes.size()) +
                     " partitions; choose one with --partition N:");
        TellVolumes(volumes);
        return nullptr;
    }
    if (number > volumes.size()) {
        PrintMessage("There is no partition " + std::to_string(number) + "; these were found:");
        TellVolumes(volumes);
        return nullptr;
    }
    const ListedVolume& chosen = volumes[number - 1];
    if (chosen.Candidate == nullptr) {
        PrintMessage("Partition " + std::to_string(number) + " can't be taken: " +
                     ProblemText(chosen.Entry.State) + ". --search thorough looks for its volume.");
        code = kExitFailed;
    }
    return chosen.Candidate;
}

} // namespace

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
        if (options_.Chosen != Command::Partitions && !Engine.SourceDisk.Partitions.empty()) {
            volumeTaken_ = TakeVolume();
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
    return FindVolumes();
}

int Session::FindVolumes() {
    if (options_.Search) {
        LogMedium();
        const int code = SearchMedium(options_, Host);
        complete_ = !Engine.Losses.Any();
        if (code == kExitDone && Engine.SourceDisk.Partitions.empty()) {
            return Refuse(*options_.Search == SearchMethod::Quick
                              ? "The quick search found no NTFS volume; try --search thorough."
                              : "The search found no NTFS volume.");
        }
        return code;
    }
    const bool found = ReadPartitionTable();
    if (WasInterrupted()) {
        return TellEarlyStop();
    }
    if (!found) {
        if (const auto kind = ScanInfoKindOfName(options_.Medium); kind != ScanInfoKind::None) {
            return LoadSavedResult(kind); // its first bytes are lost, which the load tells
        }
        return TellNoVolumeInTable();
    }
    LogMedium();
    return kExitDone;
}

int Session::TellEarlyStop() { return Refuse("Stopped before the volume was found.", kExitDoneInPart); }

// A medium that gives nothing at all has no missing table, and searching it would find nothing.
int Session::TellNoVolumeInTable() const {
    const MediumAnswer answer = AskMedium();
    if (!answer.Answers) {
        return Refuse(options_.Medium + " can't be read: " + SystemErrorText(answer.FirstSector) +
                      " If it is a disk, look whether it is still attached.");
    }
    if (answer.FirstSector != kErrorNone) {
        PrintMessage("The partition table of " + options_.Medium +
                     " can't be read: " + SystemErrorText(answer.FirstSector));
    } else {
        PrintMessage("No NTFS volume stands in the partition table of " + options_.Medium + ".");
    }
    TellUnusableVolumes();
    PrintMessage("Use --search quick or --search thorough to find volumes that the table doesn't name.");
    return kExitFailed;
}

void Session::LogMedium() const {
    const bool searched = options_.Search.has_value();
    if (SourceIsDevice()) {
        LogDiskChosen(DiskOfDevice(options_.Medium), searched);
    } else {
        LogImageChosen(AbsolutePath(options_.Medium), searched);
    }
}

int Session::OpenVolume() {
    if (saved_.Kind == ScanInfoKind::Tree) {
        return kExitDone;
    }
    return volumeTaken_ ? *volumeTaken_ : TakeVolume();
}

int Session::TakeVolume() {
    int code = kExitDone;
    const PartitionCandidate* candidate = ChooseVolume(options_.Partition, code);
    if (candidate == nullptr) {
        return code;
    }
    LoadVolumeParams(*candidate);
    if (const std::string fault = ClusterFault(); !fault.empty()) {
        return Refuse(fault + " Look for other traces of the volume with --search thorough.");
    }
    const bool located = LocateMft();
    if (located) {
        Host.LogEvent(PartitionChosenEntry(options_.Partition.value_or(1), *candidate));
    }
    if (!located && WasInterrupted()) {
        return TellEarlyStop();
    }
    if (!located && !options_.Turbo) {
        PrintMessage(
            "Critical structures not found: the Master File Table of this volume can't be located, neither "
            "where it should be nor by its mirror. --turbo finds its records by reading the whole volume.");
        return kExitFailed;
    }
    return kExitDone;
}

void Session::BeginScan() {
    if (options_.Turbo) {
        Engine.VolumeParams.TurboScanRun = 1;
        LogTurboScanStarted(options_.Partition.value_or(1));
    } else {
        LogBasicScanStarted();
    }
}

bool Session::RunScan() {
    if (!options_.Turbo) {
        Host.Bar.Begin("Scanning", ProgressBar::Unit::Record);
        const bool complete = BasicScan() != 0;
        LogBasicScanEnded(complete);
        LogLosses();
        return complete;
    }
    Host.Bar.Begin("Turbo scanning", ProgressBar::Unit::Sector, Engine.SourceDisk.BytesPerSector);
    const bool complete = TurboScan() != 0;
    LogTurboScanEnded(options_.Partition.value_or(1), complete);
    LogLosses();
    return complete;
}

// Not one record where the table should be means that its runs are wrong or that it can't be read at all.
int Session::TellLosses() {
    const ScanLosses& losses = Engine.Losses;
    if (!losses.Any()) {
        return kExitDone;
    }
    complete_ = false;
    PrintMessage(LossText(losses) + (losses.NoTable ? "." : ". Files may be missing."));
    if (!options_.Turbo) {
        PrintMessage("--turbo looks for records in the whole volume, wherever they stand.");
    }
    return losses.NoTable && !Host.HadFatal() ? kExitFailed : kExitDone;
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
    BeginScan();
    if (CreateCatalogue() == 0) {
        return TellNoCatalogue();
    }
    complete_ = RunScan();
    CloseCatalogue();
    Host.Bar.End();
    if (!complete_) {
        PrintMessage(options_.Chosen == Command::Save ? "Stopped: the volume was not scanned to its end."
                                                      : "Stopped: what was found so far is shown.");
    }
    complete_ = complete_ && !Host.HadFatal();
    const int code = TellLosses();
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
