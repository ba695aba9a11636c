#include "disktools/CloneTarget.h"

#include "engine/EngineState.h"
#include "engine/Host.h"
#include "platform/files/File.h"
#include "platform/media/Medium.h"
#include "platform/media/TargetDisk.h"

namespace thntfs {

namespace {

CopyVerdict NotOpened(CopyRefusal why, const std::string& path, ErrorCode code) {
    CopyVerdict verdict;
    verdict.Why = code == kErrorNone ? CopyRefusal::None : why;
    verdict.Path = path;
    verdict.Code = code;
    return verdict;
}

} // namespace

CopyVerdict CloneTarget::Look() {
    const MediumResult medium = OpenMedium(path_);
    if (medium.Handle != nullptr) {
        bytes_ = medium.Handle->SizeBytes();
        sectorBytes_ = medium.Handle->DeviceSectorBytes();
    }
    return NotOpened(CopyRefusal::CannotOpen, path_, medium.Error);
}

std::string CloneTarget::SectorRemark() const {
    if (sectorBytes_ == 0 || sectorBytes_ == Engine.SourceDisk.BytesPerSector) {
        return {};
    }
    return "Mind that " + path_ + " has sectors of " + std::to_string(sectorBytes_) +
           " bytes and the source of " + std::to_string(Engine.SourceDisk.BytesPerSector) +
           ": the copy's partitions will not show there.";
}

CopyVerdict CloneTarget::Open() const {
    const ErrorCode code = OpenTargetDisk(path_, Engine.TargetDisk.WriteHandle);
    return NotOpened(code == kErrorSharingViolation ? CopyRefusal::TargetHeld : CopyRefusal::CannotWrite,
                     path_, code);
}

void CloseClone(const std::string& targetPath) {
    Engine.TargetDisk.WriteHandle.reset(); // the system refuses as long as somebody has the disk to himself
    const ErrorCode code = RereadPartitions(targetPath);
    if (code != kErrorNone) {
        LogLine("The system has not read the new partitions of " + targetPath, SystemErrorText(code),
                kLogInProgress);
    }
}

} // namespace thntfs
