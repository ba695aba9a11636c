#pragma once

#include "content/SaveEntries.h"
#include "frame/StatusPanes.h"

#include <QCoreApplication>
#include <QString>

namespace thntfs {

/// How far a save is, as the status bar tells it.
class SaveProgress {
    Q_DECLARE_TR_FUNCTIONS(SaveProgress)

public:
    /// The first file is about to be saved.
    void Begin(const SaveWork& wanted) { wanted_ = wanted; }

    /// "12 of 345 files, 1.2 MB of 3.4 GB", with what they cost.
    [[nodiscard]] WorkDone Of(const SaveWork& done) const;

private:
    SaveWork wanted_;
};

/// "Saved 12 files (3.4 MB) in 2 folders; 1 damaged; 2 could not be saved", with all there is to tell.
QString SaveSummary(const SaveTotals& totals);

/// The same for the box at the end, where only what went wrong is worth telling.
QString SaveEndText(const SaveTotals& totals);

} // namespace thntfs
