#include "cli/TerminalHost.h"

#include "cli/LogFile.h"
#include "cli/Output.h"
#include "engine/EngineState.h"
#include "platform/media/DiskHelper.h"
#include "platform/system/ErrorCodes.h"

namespace thntfs {

namespace {

constexpr std::uint64_t kShownReadErrors = 20; // a disk in ruins gives millions

bool IsReadError(const ProcessLogEntry& entry) {
    return entry.Status == kLogFailed && entry.Name.starts_with("Drive access error");
}

} // namespace

TerminalHost::TerminalHost() { SetHost(this); }
TerminalHost::~TerminalHost() { SetHost(nullptr); }

void TerminalHost::LogEvent(const ProcessLogEntry& entry) {
    RunLog().Add(entry);
    if (IsReadError(entry) && ++readErrors_ <= kShownReadErrors) {
        PrintMessage(entry.Name + ": " + entry.Description);
    }
}

DiskAnswer TerminalHost::AskForDisk(const std::string& devicePath, DiskUse use) {
    return AskDiskHelper(devicePath, use);
}

void TerminalHost::JobProgress() {
    ShowWork ? ShowWork() : Bar.Update(Engine.ProgressDone, Engine.ProgressTotal);
}

void TerminalHost::SearchPosition(std::uint64_t sector, std::uint64_t endSector) {
    Bar.Update(sector - searchFirst_, endSector - searchFirst_);
}

void TerminalHost::PartitionFound(std::uint64_t startSector) {
    PrintMessage("Found a volume at sector " + std::to_string(startSector));
}

void TerminalHost::ErrorBox(const std::string& text) {
    if (text != lastBox_ && text != SystemErrorText(kErrorBrokenPipe)) {
        PrintMessage("Error: " + text);
    }
    lastBox_ = text;
}

bool TerminalHost::ReaderGone() const { return lastBox_ == SystemErrorText(kErrorBrokenPipe); }

void TerminalHost::MessageBox(const std::string& text, const std::string& caption, BoxIcon /*icon*/) {
    PrintMessage(caption + ": " + text);
}

void TerminalHost::TellSuppressed() {
    if (readErrors_ > kShownReadErrors) {
        PrintMessage(std::to_string(readErrors_ - kShownReadErrors) + " more failed reads");
    }
    readErrors_ = 0;
}

} // namespace thntfs
