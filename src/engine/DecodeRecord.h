#pragma once

#include "engine/AttributeList.h"
#include "engine/CatalogueRecords.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace thntfs {

inline constexpr std::size_t kNameUnits = 256;

/// A record decoded by a scan: the fields of its catalogue entry and the name.
struct DecodedEntry : CatalogueEntry {
    std::array<char16_t, kNameUnits> NameBuffer; ///< the first NameLength units count
    std::vector<std::uint32_t> FurtherParents;   ///< folders of the names that were met before it

    DecodedEntry() { NameBuffer[0] = 0; }

    [[nodiscard]] std::u16string_view Name() const { return {NameBuffer.data(), NameLength}; }
    void SetName(std::u16string_view name);
    void ClearName() { NameLength = 0; }
    void Clear() {
        static_cast<CatalogueEntry&>(*this) = CatalogueEntry();
        FurtherParents.clear();
    }
};

/// Turns a checked FILE record into an entry: name, parent, size, dates, Flags, and for a folder the number
/// that its index root gives. Follows attribute lists into extension records. True if the entry is to be
/// catalogued; false, with the name cleared, for the volume's own metafiles and for a record that yields
/// neither parent nor number. What a scan may read for one record is bounded, and a stop ends the reading; a
/// record that a stop kept from being decoded gives false too. ListReads tells. Passes CUserException on.
bool DecodeFileRecord(ConstBytes record, DecodedEntry& entry);

// The parts of decoding that other readers of records share.

/// Namespace of a file's short name.
inline constexpr std::uint8_t kNamespaceDos = 2;

/// Takes the name of a file name attribute's value, which starts at `valueStart` of the bytes. Of a name that
/// the entry had before, the folder is kept.
void TakeName(ConstBytes bytes, std::uint64_t valueStart, DecodedEntry& entry);

/// The dates and Flags from the standard information of a record.
void TakeStandardInformation(ConstBytes record, const Attribute& attribute, DecodedEntry& entry);

/// A folder's own number, from the first key of its index.
void TakeNumberFromIndex(ConstBytes record, const Attribute& attribute, DecodedEntry& entry);

/// Flags of a record, with the catalogue's own two bits in place of two of the attribute word.
std::uint16_t CatalogueFlags(ConstBytes record, std::uint16_t attributeBits);

/// Record number of the volume's own metafile of this name; nothing for other names.
std::optional<std::uint32_t> MetafileNumber(std::u16string_view name);

/// Asked at each read on the way along a record's attribute list: counts it, and false where the list has
/// cost enough or the user has stopped the scan.
bool MayReadForList();

/// Absolute sector of a record of the Master File Table, by way of VolumeParams.MftExtents; nothing where no
/// extent holds it.
std::optional<std::uint64_t> FindRecordSector(std::uint32_t recordNumber);

/// Reads and checks a record of the volume at an absolute sector. `record` has FileRecordBytes; it is cleared
/// first. False where no record stands there. Passes CUserException on.
bool ReadFileRecord(Bytes record, std::uint64_t sector);

/// The name from the extension record that a list entry names; false where it gives none.
bool ReadExtensionName(const AttributeListEntry& listEntry, DecodedEntry& entry);

/// The size from the extension record that a list entry names; false where it gives none.
bool ReadExtensionSize(const AttributeListEntry& listEntry, DecodedEntry& entry);

/// Name and size by way of a non-resident attribute list; false where the walk ended without a result.
bool DecodeFromListRuns(const std::vector<MftExtent>& runs, DecodedEntry& entry);

} // namespace thntfs
