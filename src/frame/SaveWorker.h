#pragma once

#include "content/SaveEntries.h"
#include "engine/Host.h"
#include "frame/SaveTexts.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace thntfs {

class MessageTarget;

/// One save: what it is to do, how far it is, and what came of it. The worker's, but while that waits in a
/// send.
struct SaveRun {
    std::vector<std::uint32_t> EntryIds;
    std::string Folder; ///< that what is saved stands in
    std::string Place;  ///< as the log tells it: the folder, or the file in it
    std::unique_ptr<TargetFolder> Target;
    SaveOptions Options;

    EntrySaver* Saver = nullptr;       ///< while it saves
    std::vector<ProcessLogEntry> Rows; ///< for the log, which are still to go there
    SaveProgress Progress;
    SaveTotals Totals;
};

/// What the thread of a save does: lines for the log, the files, and WM_JOB_FINISHED, or WM_JOB_FAILED where
/// the catalogue can't be read.
void SaveThread(MessageTarget& frame, SaveRun& run);

} // namespace thntfs
