#include "disktools/CloneTarget.h"

#include "engine/AskForDisk.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "platform/files/File.h"
#include "platform/media/Medium.h"
#include "platform/media/TargetDisk.h"

#include <utility>

namespace thntfs {

CopyVerdict CloneTarget::NotOpened(CopyRefusal why, ErrorCode code) const {
    CopyVerdict verdict;
    verdict.Why = code == kErrorNone ? CopyRefusal::None : why;
    verdict.Path = path_;
    verdict.Code = code;
    return verdict;
}

CopyVerdict CloneTarget::Look() {
    MediumResult medium = OpenMedium(path_);
    if (medium.Error != kErrorNone) {
        DiskAnswer answer = AskIfRefused(medium.Error, path_, DiskUse::WritingOver);
        lent_ = std::move(answer.Disk);
        medium = answer.Code == kErrorNone ? OpenMediumOn(DuplicateOf(lent_.Get()), path_)
                                           : MediumResult{nullptr, answer.Code};
    }
    if (medium.Handle != nullptr) {
        bytes_ = medium.Handle->SizeBytes();
        sectorBytes_ = medium.Handle->DeviceSectorBytes();
    }
    return NotOpened(CopyRefusal::CannotOpen, medium.Error);
}

std::unique_ptr<Medium> CloneTarget::OpenContents() const {
    return (lent_.IsOpen() ? OpenMediumOn(DuplicateOf(lent_.Get()), path_) : OpenMedium(path_)).Handle;
}

std::string CloneTarget::SectorRemark() const {
    if (sectorBytes_ == 0 || sectorBytes_ == Engine.SourceDisk.BytesPerSector) {
        return {};
    }
    return "Mind that " + path_ + " has sectors of " + std::to_string(sectorBytes_) +
           " bytes and the source of " + std::to_string(Engine.SourceDisk.BytesPerSector) +
           ": the copy's partitions will not show there.";
}

// Some may read a disk and not write to it, so it may have to be asked for here too.
CopyVerdict CloneTarget::Open() {
    std::unique_ptr<File>& handle = Engine.TargetDisk.WriteHandle;
    ErrorCode code = kErrorNone;
    if (!lent_.IsOpen()) {
        code = OpenTargetDisk(path_, handle);
    }
    if (code == kErrorAccessDenied) {
        DiskAnswer answer = AskIfRefused(code, path_, DiskUse::WritingOver);
        code = answer.Code;
        lent_ = std::move(answer.Disk);
    }
    if (lent_.IsOpen()) {
        code = OpenTargetDiskOn(std::move(lent_), path_, handle);
    }
    return NotOpened(code == kErrorSharingViolation ? CopyRefusal::TargetHeld : CopyRefusal::CannotWrite,
                     code);
}

void CloseClone(const std::string& targetPath) {
    Engine.TargetDisk.WriteHandle.reset(); // the system refuses as long as somebody has the disk to himself
    const ErrorCode code = RereadPartitions(targetPath);
    // Who was lent the disk may not ask for it; the system has them read by itself when a disk that was
    // written to is closed.
    if (code != kErrorNone && code != kErrorAccessDenied) {
        LogLine("The system has not read the new partitions of " + targetPath, SystemErrorText(code),
                kLogInProgress);
    }
}

} // namespace thntfs
