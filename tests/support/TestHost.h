#pragma once

#include "engine/EngineState.h"
#include "engine/Host.h"

#include <functional>
#include <utility>
#include <vector>

namespace thntfs::test {

/// A host that records what the engine reports. It is in place from its construction to its destruction and
/// never really pauses.
class TestHost : public EngineHost {
public:
    using Pair = std::pair<std::uint64_t, std::uint64_t>;

    TestHost() { SetHost(this); }
    ~TestHost() override { SetHost(nullptr); }

    void LogEvent(const ProcessLogEntry& entry) override { Log.push_back(entry); }
    void JobProgress() override {
        Progress.emplace_back(Engine.ProgressDone, Engine.ProgressTotal);
        Call(OnProgress);
    }
    void ErrorBox(const std::string& text) override { Boxes.push_back(text); }
    void MessageBox(const std::string& text, const std::string& caption, BoxIcon icon) override {
        Boxes.push_back(text + "|" + caption + (icon == BoxIcon::Warning ? "|!" : ""));
    }
    void PauseOneSecond() override { ++Pauses; }
    void PassGate() override {
        ++Gates;
        Call(OnGate);
    }
    void SearchPosition(std::uint64_t sector, std::uint64_t endSector) override {
        SearchPositions.emplace_back(sector, endSector);
        Call(OnSearchPosition);
    }
    void PartitionFound(std::uint64_t startSector) override { FoundPartitions.push_back(startSector); }
    void CopyPosition(std::uint64_t sectorsDone, std::uint64_t totalSectors) override {
        CopyPositions.emplace_back(sectorsDone, totalSectors);
        Call(OnCopyPosition);
    }

    std::vector<ProcessLogEntry> Log;
    std::vector<Pair> Progress;     ///< ProgressDone of ProgressTotal at each call
    std::vector<std::string> Boxes; ///< texts of error boxes; of others "text|caption", "|!" if they warn
    std::vector<Pair> SearchPositions;
    std::vector<std::uint64_t> FoundPartitions;
    std::vector<Pair> CopyPositions;
    std::uint64_t Pauses = 0;
    std::uint64_t Gates = 0;

    /// What a test wants done at a call, after it has been recorded. An empty one does nothing.
    std::function<void()> OnProgress;
    std::function<void()> OnGate;
    std::function<void()> OnCopyPosition;
    std::function<void()> OnSearchPosition;

private:
    static void Call(const std::function<void()>& action) {
        if (action) {
            action();
        }
    }
};

} // namespace thntfs::test
