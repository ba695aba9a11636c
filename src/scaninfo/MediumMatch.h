#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

/// What stands where the scanned volume's boot sector stood.
enum class BootMatch : std::uint8_t {
    Unknown, ///< it can't be read, or was lost already when the volume was scanned
    Same,
    Other, ///< that of another volume, or none
};

/// How much of what a saved scan says of its medium is still so.
struct MediumMatch {
    BootMatch Boot = BootMatch::Unknown;
    unsigned Records = 0;   ///< looked at, at most 64, spread over the catalogue
    unsigned Different = 0; ///< of these, no longer hold the entry that was scanned there
    unsigned Unknown = 0;   ///< of these, can't be read, or carry their names elsewhere

    [[nodiscard]] bool IsWhole() const { return Boot != BootMatch::Other && Different == 0; }

    /// True where the medium looks like another one, or one that was formatted since: the boot sector isn't
    /// the same, or more than an eighth of the records that could be judged differ. Below that it is the
    /// wear of a volume in use, where new files take the records of deleted ones.
    [[nodiscard]] bool NeedsConsent() const {
        return Boot == BootMatch::Other || Different > (Records - Unknown) / 8;
    }
};

/// Looks at the open medium for what the volume in work and the open catalogue know of it. Reads the boot
/// sector and up to 64 records, by rising sector, each once and without a line in the log; after eight reads
/// that failed no more are made.
MediumMatch MatchMedium();

/// What isn't as it was when the volume was scanned, in sentences; empty where all is.
std::string MediumMatchText(const MediumMatch& match);

} // namespace thntfs
