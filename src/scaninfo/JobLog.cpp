#include "scaninfo/JobLog.h"

#include "engine/EngineState.h"
#include "engine/Host.h"
#include "partitions/DiskEnumeration.h"
#include "partitions/VolumeList.h"
#include "platform/system/SizeText.h"

namespace thntfs {

namespace {

constexpr const char* kScanRule = "-----------------------------------";
constexpr const char* kSearchRule = "-----------------";

std::string ModeText(bool searched) { return searched ? "Logical Volume Scan" : "Partition Table"; }

std::uint8_t EndStatus(bool complete) { return complete ? kLogDone : kLogFailed; }

std::string TurboText(const char* what, unsigned number) {
    return std::string(what) + " turbo scan of logical drive " + std::to_string(number % 10);
}

} // namespace

void LogImageChosen(const std::string& path, bool searched) {
    LogLine("Selected: " + path, "Image Processing Mode:" + ModeText(searched), kLogInProgress);
}

void LogDiskChosen(const DiskInfo& disk, bool searched) {
    LogLine(disk.Name + ",  " + disk.Model + ", Serial:" + disk.Serial,
            "Disk Processing :" + ModeText(searched), kLogInProgress);
}

// The list of volumes shows the low 32 bits of a start sector, and the log what the list shows.
ProcessLogEntry PartitionChosenEntry(unsigned number, const PartitionCandidate& candidate) {
    const auto start = static_cast<std::uint32_t>(candidate.StartSector);
    ProcessLogEntry entry;
    entry.Name = "Selected NTFS logical drive " + std::to_string(number);
    entry.Description = "Starting Sector " + std::to_string(start) + ", Size " +
                        SizeText(candidate.TotalSectors * candidate.BytesPerSector);
    entry.Status = kLogInProgress;
    return entry;
}

void LogSearchStarted(std::uint64_t firstSector, std::uint64_t endSector) {
    LogLine("Searching Logical Volumes",
            "Sectors Range " + std::to_string(firstSector) + " to " + std::to_string(endSector),
            kLogInProgress);
}

void LogSearchEnded(bool complete) {
    LogLine(complete ? "Completed Searching partitions" : "Aborted searching partitions", kSearchRule,
            EndStatus(complete));
    if (const std::string limits = SearchLimitText(); !limits.empty()) {
        LogLine(limits, kSearchRule, kLogFailed);
    }
}

void LogBasicScanStarted() {
    LogLine("Processing Internal File System Structure...", kScanRule, kLogInProgress);
}

void LogBasicScanEnded(bool complete) {
    LogLine(std::string(complete ? "Completed" : "Aborted") + " processing Internal File System Structure",
            kScanRule, EndStatus(complete));
}

void LogTreeFillStarted() { LogLine("Populating Directory Structure...", kScanRule, kLogInProgress); }
void LogTreeFillEnded() { LogLine("Completed Populating Directory Structure", kScanRule, kLogDone); }

void LogTurboScanStarted(unsigned number) {
    LogLine(TurboText("Started", number), kScanRule, kLogInProgress);
}

void LogTurboScanEnded(unsigned number, bool complete) {
    LogLine(TurboText(complete ? "Completed" : "Aborted", number), kScanRule, EndStatus(complete));
}

void LogLosses() {
    if (Engine.Losses.Any()) {
        LogLine(LossText(Engine.Losses), kScanRule, kLogFailed);
    }
}

void LogYield() {
    if (const std::string leftOut = LeftOutText(Engine.Yield); !leftOut.empty()) {
        LogLine(leftOut, kScanRule, kLogDone);
    }
    if (Engine.Yield.Little()) {
        LogLine(LittleFoundText(Engine.Yield), "Turbo Scan may find more", kLogFailed);
    }
}

void LogNoCatalogue() { LogLine("Supporting Files couldn't be opened", kScanRule, kLogDone); }

} // namespace thntfs
