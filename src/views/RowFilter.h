#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace thntfs {

struct FileRows;

/// What of a list's rows is shown.
struct RowFilter {
    bool DeletedOnly = false;
    std::string NamePart; ///< narrow text that a name holds somewhere, case aside; may have the signs of
                          ///< Wildcard. Empty: any name

    [[nodiscard]] bool Narrows() const { return DeletedOnly || !NamePart.empty(); }
    bool operator==(const RowFilter&) const = default;
};

/// The places in `rows` of those that a filter lets through, rising.
std::vector<std::uint32_t> FittingPlaces(const FileRows& rows, const RowFilter& filter);

} // namespace thntfs
