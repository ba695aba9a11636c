#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

/// What the last scan has met, beside what it has lost.
struct ScanYield {
    /// Records that stand in no entry for want of a usable name.
    std::uint64_t LeftOut = 0;
    std::uint64_t Met = 0;      ///< slots of the table in which a record stands, in use or not
    std::uint64_t Expected = 0; ///< as many as the sizes of the table and of its volume suggest

    /// The table gives so little that most of the volume's records may stand elsewhere.
    [[nodiscard]] bool Little() const { return Met < Expected / 10; }
};

/// What a scan with little yield has met, in words, without a full stop: "Little was found: 12 records, where
/// the volume should have about 9000".
std::string LittleFoundText(const ScanYield& yield);

/// How many records were left out, in words, without a full stop; empty where none was.
std::string LeftOutText(const ScanYield& yield);

} // namespace thntfs
