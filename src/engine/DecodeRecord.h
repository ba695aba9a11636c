#pragma once

#include "engine/AttributeList.h"
#include "engine/CatalogueRecords.h"

#include <array>
#include <optional>
#include <string_view>

namespace thntfs {

inline constexpr std::size_t kNameUnits = 256;

/// A record decoded by a scan: the fields of its catalogue entry and the name.
struct DecodedEntry : CatalogueEntry {
    std::array<char16_t, kNameUnits> NameBuffer; ///< the first NameLength units count

    DecodedEntry() { NameBuffer[0] = 0; }

    [[nodiscard]] std::u16string_view Name() const { return {NameBuffer.data(), NameLength}; }
    void SetName(std::u16string_view name);
    void ClearName() { NameLength = 0; }
    void Clear() { static_cast<CatalogueEntry&>(*this) = CatalogueEntry(); }
};

/// Turns a checked FILE record into an entry: name, parent, size, dates, Flags, and for a folder the number
/// that its index root gives. Follows attribute lists into extension records. Gives 1 if the entry is to be
/// catalogued; 0, with the name cleared, for the volume's own metafiles and for a record that yields neither
/// parent nor number. What a scan may read for one record is bounded, and a stop ends the reading; a record
/// that a stop kept from being decoded gives 0 too. ListReads tells. Passes CUserException on.
int DecodeFileRecord(ConstBytes record, DecodedEntry& entry);

/// Takes the name of a file name attribute's value, which starts at `valueStart` of the bytes.
void TakeName(ConstBytes bytes, std::uint64_t valueStart, DecodedEntry& entry);

/// Absolute sector of a record of the Master File Table, by way of VolumeParams.MftExtents; nothing where no
/// extent holds it.
std::optional<std::uint64_t> FindRecordSector(std::uint32_t recordNumber);

/// The name from the extension record that a list entry names. Gives 1 if there was one.
int ReadExtensionName(const AttributeListEntry& listEntry, DecodedEntry& entry);

/// The size from the extension record that a list entry names. Gives 1 if there was one.
int ReadExtensionSize(const AttributeListEntry& listEntry, DecodedEntry& entry);

/// Name and size by way of a non-resident attribute list. Gives 1 if the walk ended with a result.
int DecodeFromListRuns(const std::vector<MftExtent>& runs, DecodedEntry& entry);

} // namespace thntfs
