#pragma once

#include <cstdint>
#include <vector>

namespace thntfs {

/// One partition of a GUID partition table, in sectors of the medium.
struct GptEntry {
    std::uint64_t FirstSector = 0;
    std::uint64_t Sectors = 0;
    bool Basic = false; ///< of the type that ordinary data volumes have
};

/// A GUID partition table, as one of its two headers leads to it.
struct GptTable {
    bool Sound = false;            ///< the sums of its header and its entries are right
    std::vector<GptEntry> Entries; ///< those in use that begin on the medium, in order
};

struct GptTables {
    GptTable First;
    GptTable Backup;
};

/// Reads both tables of SourceDisk. The size of the sectors that they count by is taken from where their
/// headers stand: the image of a disk with large sectors is read in small ones. The backup is looked for
/// where the first header says, where the protective partition ends, and in the medium's last sectors. A
/// table with a wrong sum gives its entries for what they are worth; so do both without headers, data volumes
/// alone, unless the classic table names volumes. Reads fail in silence, and nothing is thrown but bad_alloc.
GptTables ReadGptTables();

} // namespace thntfs
