#pragma once

#include "engine/Attribute.h"
#include "engine/RunMap.h"

#include <optional>
#include <string>
#include <vector>

namespace thntfs {

/// Number of a record and how often its slot had been used, as one file reference.
inline constexpr std::uint64_t kReferenceNumber = 0xFFFFFFFFFFFF;
[[nodiscard]] inline std::uint64_t NumberOf(std::uint64_t reference) { return reference & kReferenceNumber; }
[[nodiscard]] inline std::uint16_t SequenceOf(std::uint64_t reference) {
    return static_cast<std::uint16_t>(reference >> 48U);
}
/// Sequence number of a checked record.
[[nodiscard]] inline std::uint16_t RecordSequence(ConstBytes record) { return U16At(record, 16); }
/// False only for a record of the newer form that gives itself another number.
[[nodiscard]] bool MayHaveNumber(ConstBytes record, std::uint64_t number);

/// Whether a checked record is the one that a reference with this sequence number meant: where a file is
/// deleted, its records count one up. A reference may leave the number open, as 0.
[[nodiscard]] bool SequenceFits(ConstBytes record, std::uint16_t sequence);

/// One entry of an attribute list: a piece of an attribute, and the record that holds it.
struct ListedPiece {
    std::uint32_t Type = 0;
    std::u16string Name;
    std::uint64_t FirstVcn = 0;
    std::uint64_t Reference = 0;
    std::uint16_t Id = 0;
};

/// The value of an attribute list, resident or not, cut at the list's own size and at 256 KiB, beyond which
/// NTFS makes none. `whole` is cleared where a part of it could not be had. Passes CUserException on.
std::vector<std::uint8_t> ReadListValue(ConstBytes record, const Attribute& list, bool& whole);

/// The entries of a list's value. One that doesn't hold its fields, or its name, ends them and clears
/// `whole`.
std::vector<ListedPiece> ListedPieces(ConstBytes value, bool& whole);

/// Name of an attribute; empty where it has none.
std::u16string AttributeName(ConstBytes record, const Attribute& attribute);

/// The attribute of a checked record that a list entry speaks of: type, name and first cluster must be the
/// same, and so must the id. Null where the record holds none.
std::optional<Attribute> FindListed(ConstBytes record, const ListedPiece& piece);

/// The run list of a non-resident attribute, cut at the attribute's end.
ConstBytes RunListOf(ConstBytes record, const Attribute& attribute);

/// Reads bytes of an attribute by its runs, in clusters of the volume in work. `offset` begins a sector.
/// Holes and what could not be had are zeros; false where some could not. Passes CUserException on.
bool ReadByRuns(const RunMap& runs, std::uint64_t offset, Bytes buffer);

/// Absolute sector of a byte of a volume's cluster, where sectors are those of the medium.
std::uint64_t SectorInCluster(std::uint64_t lcn, std::uint64_t offset, std::uint32_t clusterBytes);

} // namespace thntfs
