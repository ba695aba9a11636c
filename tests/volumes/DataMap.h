#pragma once

#include "platform/system/Bytes.h"
#include "support/Manifest.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace thntfs::test {

/// Where the unnamed data of a record lies, read without the code under test.
struct DataMap {
    struct Run {
        std::uint64_t Clusters = 0;
        std::optional<std::uint64_t> Start; ///< none for a hole
    };

    bool Complete = false; ///< the record tells of the whole data, without an attribute list
    bool Compressed = false;
    std::uint64_t UnitClusters = 1; ///< clusters of a compression unit
    std::vector<Run> Runs;          ///< empty where the data is resident
};

DataMap ReadDataMap(const PackedImage& image, const LayoutRow& layout, std::uint64_t recordSector);

/// SHA-256 of the bytes that came out of a file, with zeros put in again where holes were closed up, and cut
/// at the file's size. Empty where their number isn't what the map tells.
std::string HashWithHoles(ConstBytes saved, const DataMap& map, std::uint64_t size, const PackedImage& image,
                          const LayoutRow& layout);

/// True where the table's own record can be known as such: it bears its name itself.
bool TableIsKnown(const PackedImage& image, const LayoutRow& layout);

/// Names in the records that lie partly in one piece of the table and partly in the next. Nothing of them can
/// be found: each piece is walked by itself, and what is left of it at its end is too short for a record.
std::set<std::string> NamesInSplitRecords(const PackedImage& image, const LayoutRow& layout);

} // namespace thntfs::test
