#pragma once

#include "partitions/BootSector.h"
#include "partitions/TableHead.h"

#include <array>
#include <cstdint>
#include <functional>
#include <set>
#include <vector>

namespace thntfs {

/// What a search meets of volumes whose place it doesn't tell outright, and the volumes that follow from it.
/// A boot sector may be the copy at its volume's end. The first records, in the table or in its mirror, tell
/// how far from the volume's start they stand. A volume worked out so may begin before the medium, where that
/// lacks its first part: its start is below 0 then, wrapped.
///
/// Of each kind kMaxTraces are kept; a disk with more holds little but copies.
class LostStarts {
public:
    static constexpr std::size_t kMaxTraces = 4096;

    /// Takes note of an NTFS boot sector at an absolute sector.
    void NoteBootSector(ConstBytes bootSector, std::uint64_t sector);

    /// Takes note of a record that begins in a sector, if it may be the table's own; `firstSector` holds the
    /// bytes of that sector. Reads it, and the next one, for that alone.
    void NoteRecord(ConstBytes firstSector, std::uint64_t sector);

    /// Takes note of the boot sector of an encrypted volume.
    void NoteEncrypted(std::uint64_t sector);

    /// Looks for all of these in one sector.
    void NoteSector(ConstBytes bytes, std::uint64_t sector);

    /// Puts a candidate behind the others for each volume that its first records confirm, but for those that
    /// are candidates already, and an entry into Engine.TableVolumes for each encrypted one. Ends early where
    /// `mayGoOn` says no.
    void AddVolumes(const std::function<bool()>& mayGoOn) const;

private:
    struct BootTrace {
        std::uint64_t Sector;
        std::array<std::uint8_t, kBootSectorBytes> Bytes;
    };
    struct HeadTrace {
        std::uint64_t Sector;
        TableHead Head;
    };

    std::vector<BootTrace> boots_;
    std::vector<HeadTrace> heads_;
    std::set<std::uint64_t> encrypted_;
};

} // namespace thntfs
