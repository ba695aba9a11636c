#pragma once

#include "catalogue/FindWalk.h"

#include <QCoreApplication>
#include <cstdint>
#include <memory>
#include <string>

class QWidget;

namespace thntfs {

class CTHNTFSListView;
class CTHNTFSTreeView;

/// What is searched for, as the user has said it last. A limit counts where its filter is on.
struct FindState {
    std::string FindPattern; ///< narrow text
    bool FindMatchCase = false;
    bool FindSizeOn = false;
    std::uint64_t FindSizeLimit = 0; ///< bytes
    std::uint8_t FindSizeMode = 0;   ///< 0 at least, 1 at most
    bool FindDateOn = false;
    std::uint16_t FindDateFrom = 0; ///< DOS dates, both included
    std::uint16_t FindDateTo = 0;
    std::uint8_t FindDateMode = 0;         ///< 0 last access, 1 creation
    std::uint32_t FindStart = 0;           ///< EntryId of the folder that is searched
    std::uint32_t FoundEntry = 0xFFFFFFFF; ///< EntryId of the hit that shows, 0xFFFFFFFF for none
};

/// Find and Find Next: a line of searches through the catalogue, each hit of which is shown in its place. It
/// holds the interface thread until it has a hit; Escape ends it early, and Find Next goes on from there.
class FindSearch {
    Q_DECLARE_TR_FUNCTIONS(FindSearch)

public:
    /// Both views outlive it.
    FindSearch(CTHNTFSTreeView& tree, CTHNTFSListView& list);

    /// Asks what is to be found below a folder, and begins a line of searches for it.
    void Ask(QWidget* owner, std::uint32_t startId);

    /// Begins a line of searches; FoundEntry doesn't count.
    void Begin(const FindState& state, bool allInOneList = false);

    /// Goes on to the next hit, from the start of the line: 1 where there is one.
    int SearchFolder();

    /// Ends the line of searches. A list of hits gives way to the folder that was shown.
    void End();

    /// The catalogue goes away.
    void Forget();

    [[nodiscard]] bool HasFound() const { return state_.FoundEntry != FindState().FoundEntry; }

private:
    int ShowNext();
    void ShowHit(const FindHit& hit);
    void ShowAllHits();
    void TellNothingFound();
    void SetFoundEntry(std::uint32_t entryId);

    CTHNTFSTreeView& tree_;
    CTHNTFSListView& list_;
    FindState state_;
    std::unique_ptr<FindWalk> walk_; ///< where the line has got to; null where there is none
};

} // namespace thntfs
