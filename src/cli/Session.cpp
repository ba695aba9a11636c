#include "cli/Session.h"

#include "catalogue/Catalogue.h"
#include "cli/CandidateText.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/SearchMedium.h"
#include "engine/EngineState.h"
#include "engine/LocateMft.h"
#include "partitions/OpenSource.h"
#include "partitions/PartitionTable.h"
#include "platform/Interrupt.h"
#include "scans/BasicScan.h"
#include "scans/TurboScan.h"

namespace thntfs {

namespace {

const PartitionCandidate* CandidateNumber(unsigned number) {
    const PartitionCandidate* candidate = Engine.SourceDisk.Partitions.First();
    for (; candidate != nullptr && number > 1; --number) {
        candidate = candidate->Next.get();
    }
    return candidate;
}

void TellCandidates() {
    unsigned number = 0;
    for (const PartitionCandidate* candidate = Engine.SourceDisk.Partitions.First(); candidate != nullptr;
         candidate = candidate->Next.get()) {
        PrintMessage("  " + CandidateText(++number, *candidate));
    }
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

int Session::OpenMedium() {
    const ErrorCode code = OpenSource(options_.Medium);
    if (code == kErrorDirectory) {
        PrintMessage(options_.Medium + " is a folder. Give a disk, or a file that holds the image of one.");
        return kExitFailed;
    }
    if (code != kErrorNone) {
        PrintMessage("Cannot open " + options_.Medium + ": " + SystemErrorText(code));
        if (code == kErrorAccessDenied) {
            PrintMessage("Reading a disk needs the right to do so: run the program as root, for instance with sudo.");
        }
        return kExitFailed;
    }
    if (Engine.SourceDisk.TotalSectors == 0) {
        PrintMessage(options_.Medium + " is empty: there is not one sector to read.");
        return kExitFailed;
    }
    return FindVolumes();
}

int Session::FindVolumes() {
    if (options_.Search) {
        const int code = SearchMedium(options_, Host);
        if (code == kExitDone && Engine.SourceDisk.Partitions.Empty()) {
            PrintMessage(*options_.Search == SearchMethod::Quick
                             ? "The quick search found no NTFS volume; try --search thorough."
                             : "The search found no NTFS volume.");
            return kExitFailed;
        }
        return code;
    }
    if (ReadPartitionTable() == 0) {
        PrintMessage("No NTFS volume stands in the partition table of " + options_.Medium + ".");
        PrintMessage("Use --search quick or --search thorough to find volumes that the table doesn't name.");
        return kExitFailed;
    }
    return kExitDone;
}

int Session::OpenVolume() {
    const std::size_t count = Engine.SourceDisk.Partitions.Count();
    if (!options_.Partition && count > 1) {
        PrintMessage("There are " + std::to_string(count) + " partitions; choose one with --partition N:");
        TellCandidates();
        return kExitWrongWords;
    }
    const PartitionCandidate* candidate = CandidateNumber(options_.Partition.value_or(1));
    if (candidate == nullptr) {
        PrintMessage("There is no partition " + std::to_string(*options_.Partition) + "; these were found:");
        TellCandidates();
        return kExitWrongWords;
    }
    LoadVolumeParams(*candidate);
    if (LocateMft() == 0 && !options_.Turbo) {
        PrintMessage("Critical structures not found: the Master File Table of this volume can't be located, neither "
                     "where it should be nor by its mirror. --turbo finds its records by reading the whole volume.");
        return kExitFailed;
    }
    return kExitDone;
}

bool Session::RunScan() {
    if (!options_.Turbo) {
        Host.Bar.Begin("Scanning", ProgressBar::Unit::Record);
        return BasicScan() != 0;
    }
    Host.Bar.Begin("Turbo scanning", ProgressBar::Unit::Sector, Engine.SourceDisk.BytesPerSector);
    Engine.VolumeParams.TurboScanRun = 1;
    return TurboScan() != 0;
}

int Session::ScanVolume() {
    if (const ErrorCode code = folder_.Create(); code != kErrorNone) {
        PrintMessage("Cannot make a temporary folder: " + SystemErrorText(code));
        return kExitFailed;
    }
    Engine.CatalogueFolder = folder_.Path();
    Engine.ScanRunFlag = WasInterrupted() ? 0 : 1;
    if (CreateCatalogue() == 0) {
        PrintMessage("Supporting Files couldn't be opened");
        return kExitFailed;
    }
    complete_ = RunScan();
    CloseCatalogue();
    Host.Bar.End();
    if (!complete_) {
        PrintMessage(options_.Chosen == Command::Save ? "Stopped: the volume was not scanned to its end."
                                                      : "Stopped: what was found so far is shown.");
    }
    complete_ = complete_ && !Host.HadFatal();
    if (OpenCatalogue() == 0) {
        PrintMessage("Supporting Files couldn't be opened");
        return kExitFailed;
    }
    return kExitDone;
}

int Session::OpenCatalogueOfMedium() {
    for (const auto step : {&Session::OpenMedium, &Session::OpenVolume, &Session::ScanVolume}) {
        if (const int code = (this->*step)(); code != kExitDone) {
            return code;
        }
    }
    return kExitDone;
}

} // namespace thntfs
