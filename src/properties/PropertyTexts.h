#pragma once

#include <QString>
#include <cstdint>
#include <vector>

namespace thntfs {

struct BelowCounts;
struct CatalogueItem;
struct EntryFacts;

/// "(1.500   KB) 1536 bytes": in KB below 1,048,576 bytes, in MB below 1,073,741,824, else in GB. While a
/// folder is counted no blank stands behind the parenthesis.
QString PropertySize(std::uint64_t bytes, bool counting = false);

/// "3 Files, 1 Folders".
QString PropertyContains(const BelowCounts& below);

/// A DOS date as "Saturday, January 13, 2024"; "N\A" for none.
QString PropertyDate(std::uint16_t dosDate);

/// A file time in local time with its offset from UTC, to the thousandth of a second.
QString PropertyTime(std::uint64_t fileTime);

/// NTFS's attribute bits by their names, and as a number: "Hidden, Archive (0x00000022)".
QString PropertyAttributes(std::uint32_t bits);

struct PropertyRow {
    QString Caption;
    QString Text; ///< one line or more
};

/// The rows below the sheet's own: those that there is something to show in.
std::vector<PropertyRow> FurtherProperties(const CatalogueItem& item, const EntryFacts& facts);

} // namespace thntfs
