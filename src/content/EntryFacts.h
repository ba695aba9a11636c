#pragma once

#include "catalogue/CatalogueReader.h"
#include "catalogue/Conditions.h"
#include "content/ExactFile.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace thntfs {

/// What is known of one entry beside what the catalogue's list shows.
struct EntryFacts {
    std::string Path; ///< as EntryWalk gives it, "/" for " Root"; empty where nothing leads there
    thntfs::Condition Condition;

    bool RecordRead = false; ///< what follows comes from its record and is empty otherwise
    ExactTimes Times;
    std::uint32_t AttributeBits = 0;
    std::vector<std::string> Names; ///< paths of all names, DOS names left out; in a folder that isn't in
                                    ///< the catalogue "?/name"
    std::vector<ExactStreamInfo> Streams; ///< those with a name
    std::optional<ExactPlace> Data;       ///< of the content; none where there is no content
};

/// Gathers them, from the catalogue and the medium. `mayGoOn` is asked from time to time; where it says no,
/// what is known by then is the result. A medium that fails outside a job leaves lines in the log and no box.
/// Throws CUserException, after a box.
EntryFacts GatherEntryFacts(const CatalogueItem& item, const std::function<bool()>& mayGoOn);

} // namespace thntfs
