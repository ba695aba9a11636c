#include "cli/CandidateText.h"
#include "cli/Commands.h"
#include "cli/CopySession.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "disktools/CopyDisk.h"
#include "disktools/CopyRules.h"
#include "engine/EngineState.h"
#include "partitions/DiskEnumeration.h"
#include "partitions/OpenSource.h"
#include "partitions/ReadVolumes.h"
#include "platform/media/DiskIdentity.h"
#include "platform/media/Medium.h"
#include "platform/media/TargetDisk.h"
#include "platform/system/SizeText.h"

#include <vector>

namespace thntfs {

namespace {

using Lines = std::vector<std::string>;

/// What a target is before it is written over.
struct TargetFacts {
    std::uint64_t Bytes = 0;
    std::uint32_t SectorBytes = 0; ///< 0 for a file
    Lines Contents;                ///< what will be lost, a line each
};

void AddDisk(Lines& lines, const DiskProperties& disk) {
    const auto info = DescribeDisk(disk, 0);
    if (!info) {
        return;
    }
    lines.push_back("disk " + info->Name + ": " + info->Model + ", " + info->Size + ", serial number " +
                    info->Serial);
    for (const DiskPart& part : disk.Parts) {
        lines.push_back("partition " + part.Path + ": " + ByteText(part.SizeBytes));
    }
}

/// Opens the target as a source for a moment, as any disk whose volumes are listed.
void AddVolumes(Lines& lines, const std::string& path) {
    if (OpenSource(path) == kErrorNone) {
        ReadVolumes();
        for (const ListedVolume& volume : ListVolumes()) {
            if (volume.Candidate != nullptr) {
                lines.push_back("NTFS volume " + VolumeText(volume));
            }
        }
    }
    ResetEngineState();
}

int LookAtTarget(const std::string& path, TargetFacts& facts) {
    const MediumResult medium = OpenMedium(path);
    if (medium.Handle == nullptr) {
        return Refuse("Cannot open " + path + ": " + SystemErrorText(medium.Error));
    }
    facts.Bytes = medium.Handle->SizeBytes();
    facts.SectorBytes = medium.Handle->DeviceSectorBytes();
    for (const DiskProperties& disk : ListDisks()) {
        if (SameMedium(disk.Path, path)) {
            AddDisk(facts.Contents, disk);
        }
    }
    AddVolumes(facts.Contents, path);
    return kExitDone;
}

int RefuseCopy(const CopyVerdict& verdict, const Options& options) {
    return verdict.Allowed() ? int{kExitDone} : Refuse(CopyRefusalText(verdict, options.Medium));
}

int CheckSize(const Options& options, const TargetFacts& facts) {
    const CopyVerdict verdict = CheckTargetSize(options.Target, facts.Bytes);
    if (!verdict.Allowed()) {
        return RefuseCopy(verdict, options);
    }
    if (facts.SectorBytes != 0 && facts.SectorBytes != Engine.SourceDisk.BytesPerSector) {
        PrintMessage("Mind that " + options.Target + " has sectors of " + std::to_string(facts.SectorBytes) +
                     " bytes and the source of " + std::to_string(Engine.SourceDisk.BytesPerSector) +
                     ": the copy's partitions will not show there.");
    }
    return kExitDone;
}

int TellLoss(const Options& options, const TargetFacts& facts) {
    PrintMessage("Cloning to " + options.Target + " (" + ByteText(facts.Bytes) +
                 ") destroys all that is on it:");
    for (const std::string& line : facts.Contents) {
        PrintMessage("  " + line);
    }
    if (!options.Yes) {
        PrintMessage("Nothing has been written. Give --yes to go on.");
        return kExitWrongWords;
    }
    return kExitDone;
}

int OpenCloneTarget(const Options& options) {
    const ErrorCode code = OpenTargetDisk(options.Target, Engine.TargetDisk.WriteHandle);
    if (code == kErrorSharingViolation) {
        return Refuse(options.Target + " is in use by the system.");
    }
    return code == kErrorNone
               ? int{kExitDone}
               : Refuse("Cannot open " + options.Target + " for writing: " + SystemErrorText(code));
}

} // namespace

int RunClone(const Options& options) {
    CopySession session(options, CopyWork::Cloning);
    TargetFacts facts;
    const int code =
        RunSteps([&] { return RefuseCopy(CheckCopyPlaces(options.Medium, options.Target), options); },
                 [&] { return LookAtTarget(options.Target, facts); },
                 [&] { return session.OpenSourceDisk(); }, [&] { return CheckSize(options, facts); },
                 [&] { return TellLoss(options, facts); }, [&] { return OpenCloneTarget(options); });
    if (code != kExitDone) {
        return code;
    }
    const std::uint64_t total = Engine.SourceDisk.TotalSectors;
    CopyLedger ledger(CopyMap(total * Engine.SourceDisk.BytesPerSector));
    session.Begin();
    session.BeginPart("Cloning");
    CopyDisk(*Engine.TargetDisk.WriteHandle, total, kCopyTransferSectors, &ledger);
    return session.Finish(ledger, "");
}

} // namespace thntfs
