#pragma once

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

    TestHost();
    ~TestHost() override;

    void LogEvent(const ProcessLogEntry& entry) override;
    void JobProgress() override;
    void ErrorBox(const std::string& text) override;
    void MessageBox(const std::string& text, const std::string& caption, BoxIcon icon) override;
    void PauseOneSecond() override;
    void PassGate() override;
    void SearchPosition(std::uint64_t sector, std::uint64_t endSector) override;
    void PartitionFound(std::uint64_t startSector) override;
    void CopyPosition(std::uint64_t sectorsDone, std::uint64_t totalSectors) override;

    /// How many log records have this as their name.
    [[nodiscard]] std::size_t CountLogged(const std::string& name) const;

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
};

} // namespace thntfs::test
