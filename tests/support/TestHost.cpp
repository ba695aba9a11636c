#include "support/TestHost.h"

#include "engine/EngineState.h"

#include <algorithm>

namespace thntfs::test {

namespace {

void Call(const std::function<void()>& action) {
    if (action) {
        action();
    }
}

} // namespace

TestHost::TestHost() { SetHost(this); }

TestHost::~TestHost() { SetHost(nullptr); }

void TestHost::LogEvent(const ProcessLogEntry& entry) { Log.push_back(entry); }

void TestHost::JobProgress() {
    Progress.emplace_back(Engine.ProgressDone, Engine.ProgressTotal);
    Call(OnProgress);
}

void TestHost::ErrorBox(const std::string& text) { Boxes.push_back(text); }

void TestHost::MessageBox(const std::string& text, const std::string& caption, BoxIcon icon) {
    Boxes.push_back(text + "|" + caption + (icon == BoxIcon::Warning ? "|!" : ""));
}

void TestHost::PauseOneSecond() { ++Pauses; }

void TestHost::PassGate() {
    ++Gates;
    Call(OnGate);
}

void TestHost::SearchPosition(std::uint64_t sector, std::uint64_t endSector) {
    SearchPositions.emplace_back(sector, endSector);
    Call(OnSearchPosition);
}

void TestHost::PartitionFound(std::uint64_t startSector) { FoundPartitions.push_back(startSector); }

void TestHost::CopyPosition(std::uint64_t sectorsDone, std::uint64_t totalSectors) {
    CopyPositions.emplace_back(sectorsDone, totalSectors);
    Call(OnCopyPosition);
}

std::size_t TestHost::CountLogged(const std::string& name) const {
    return static_cast<std::size_t>(std::count_if(
        Log.begin(), Log.end(), [&name](const ProcessLogEntry& entry) { return entry.Name == name; }));
}

} // namespace thntfs::test
