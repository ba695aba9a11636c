#pragma once

namespace thntfs {

/// Finds the record of the Master File Table of the volume in VolumeParams and decodes the table's runs into
/// VolumeParams.MftExtents. It is sought at MftSector, then within one cluster from where the table should
/// start and, in step with that, from the mirror. Corrects MftSector where the record was found elsewhere and
/// writes MftRecordCount, and leaves in TableBytes and TableCut what it learns of the table's size. True if
/// there are extents. Swallows all exceptions.
bool LocateMft();

} // namespace thntfs
