#include "frame/CommandRules.h"

#include "frame/CommandIds.h"

namespace thntfs {

namespace {

bool TurboScanEnabled(const FrameState& state, bool idle) {
    return state.StructuresMissing || (state.BasicScanDone && idle && state.HasTree && !state.TurboScanUsed);
}

} // namespace

bool CommandEnabled(std::uint32_t command, const FrameState& state) {
    const bool noRun = !state.ScanRunning;
    const bool idle = noRun && !state.JobBusy;
    if (command >= kCmdRecent && command < kCmdRecent + kRecentCommands) {
        return idle;
    }
    switch (command) {
    case kCmdWizard:
    case kCmdCloneDisk:
        return idle;
    case kCmdOpenFoundDrive:
    case kCmdSavePartitionInfo:
        return noRun && state.HasPartitions;
    case kCmdLoadPartitionInfo:
    case kCmdLoadTreeInfo:
        return noRun;
    case kCmdFind:
    case kCmdSaveAll:
    case kCmdSaveTreeInfo:
    case kCmdOpenAsFolder:
        return state.HasTree && idle;
    case kCmdSaveChecked:
        return state.HasTree && idle && state.HasMarks;
    case kCmdFindNext:
        return state.HasFound && idle;
    case kCmdStop:
        return state.ScanRunning && !state.HasCopyDialog;
    case kCmdParentFolder:
        return idle && state.CurrentHasParent;
    case kCmdTurboScan:
        return TurboScanEnabled(state, idle);
    case kCmdHound:
        return idle && !state.StructuresMissing;
    case kCmdCopyNames:
    case kCmdCopyPaths:
        return state.HasSelection;
    case kCmdSaveList:
        return idle && state.HasTree && (state.HasRows || state.HasPath);
    case kCmdPathLine:
        return state.HasPath;
    case kCmdClearLog:
    case kCmdSaveLog:
        return state.HasLog;
    default:
        return true;
    }
}

} // namespace thntfs
