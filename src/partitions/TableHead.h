#pragma once

#include "engine/RunMap.h"
#include "engine/StoredRecords.h"

#include <cstdint>
#include <optional>

namespace thntfs {

/// What the first two records of a Master File Table, or of its mirror, say of the volume. The times in them
/// aren't looked at: some drivers write none, and some change them.
struct TableHead {
    std::uint64_t TableCluster = 0;  ///< where the table begins
    std::uint64_t TableBytes = 0;    ///< size of its data
    RunMap Runs;                     ///< of the table, as far as record 0 itself tells
    std::uint64_t MirrorCluster = 0; ///< where the mirror begins; 0 where record 1 can't be had
    std::uint64_t MirrorBytes = 0;
    std::uint32_t ClusterBytes = 0; ///< as their attributes show it; 0 where they don't
    std::uint32_t RecordBytes = 0;
};

/// Sizes that a record may have, in bytes.
bool IsPossibleRecordSize(std::uint64_t bytes);

/// Whether the first sector of a FILE record, as it stands on the medium, may be that of record 0, the
/// table's own. Cheap.
bool MayBeTableRecord(ConstBytes sector);

/// Reads records 0 and 1 at an absolute sector. None where record 0 isn't the table's. In silence: a failed
/// read is as good as other bytes.
std::optional<TableHead> ReadTableHead(std::uint64_t sector, std::uint32_t recordBytes);

/// The head at a place where a volume would have it: where the table's own cluster and, if it tells one, the
/// mirror's and the cluster size are those of the candidate.
std::optional<TableHead> HeadAtCluster(const PartitionCandidate& volume, std::uint64_t cluster);

/// Absolute sector in which a record of the table begins; none where the head's runs don't tell.
std::optional<std::uint64_t> SectorOfRecord(const PartitionCandidate& volume, const TableHead& head,
                                            std::uint64_t number);

/// Reads one record and checks it; false where it isn't a record or gives itself another number.
bool ReadRecordOf(const PartitionCandidate& volume, std::uint64_t sector, std::uint64_t number, Bytes record);

/// Whether a volume's first records stand where the candidate says. Where a copy stands in one of the two
/// places alone, and no boot sector has told the start, the table must go on behind them, or stand
/// where the mirror leads: the same copy could stand for two volumes otherwise.
std::optional<TableHead> FindHeadOf(const PartitionCandidate& volume);

/// Whether records of the table stand where the candidate says, though its first ones may not.
bool LaterRecordsStand(const PartitionCandidate& volume);

} // namespace thntfs
