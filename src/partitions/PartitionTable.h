#pragma once

namespace thntfs {

/// Builds the candidate list of SourceDisk from the medium's partition table: the volumes of the master boot
/// record in entry order, then the logical ones along the chain of extended partitions. The old list is
/// freed. Only type 0x07 with a boot sector that passes its test is listed. A chain is followed over at most
/// 1024 tables and never twice through one. True if the list isn't empty; a fatal read, or an
/// interrupt, ends the walk with what has been found. Beside the list, Engine.TableVolumes gets every
/// volume of type 0x07 that the tables name, usable or not.
bool ReadPartitionTable();

} // namespace thntfs
