#pragma once

#include "catalogue/CatalogueReader.h"
#include "content/MissingData.h"
#include "engine/AttributeList.h"
#include "platform/system/Bytes.h"

#include <cstdint>

namespace thntfs {

class File;

/// Writes an entry's unnamed data to an output file, from the medium, by RecordSector and Size. The caller
/// has zeroed BytesWritten; what is missing is added to `missing`. Follows attribute lists and decompresses;
/// holes add no bytes; the last unit of a compressed file isn't cut to the size. Gives false where the
/// entry's record or an extension record fails its check; what was written until then stays. In a job,
/// clearing ScanRunFlag ends it. Passes CUserException on: a fatal read or a failed write, whose box has been
/// shown.
bool ReadEntryContent(const CatalogueItem& entry, File& outputHandle, MissingData& missing);

/// Bytes of room that ReadEntryContent may need for an entry: its size, but no more than its runs and the
/// volume can hold. 0 where its record is damaged. Compressed data may need more than its runs hold. Passes
/// CUserException on.
std::uint64_t ContentNeed(const CatalogueItem& entry);

/// Writes the unnamed data attribute that one checked record holds, if it has one.
void WriteDataAttribute(const CatalogueItem& entry, File& outputHandle, ConstBytes record,
                        MissingData& missing);

/// Decodes the attribute list of a checked record, which is taken to be its second attribute. Gives false
/// where that attribute is another.
bool ReadAttributeList(ConstBytes record, std::vector<AttributeListNode>& nodes);

/// Writes the clusters of plain runs, up to the entry's size.
void WriteRuns(const CatalogueItem& entry, File& outputHandle, const std::vector<MftExtent>& runs,
               MissingData& missing);

/// Writes the data of compressed runs, unit by unit; a unit is ClusterBytes * 2^unitExponent bytes.
void WriteCompressedRuns(const CatalogueItem& entry, File& outputHandle, const std::vector<MftExtent>& runs,
                         unsigned unitExponent, MissingData& missing);

} // namespace thntfs
