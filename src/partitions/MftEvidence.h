#pragma once

#include "partitions/CandidateIndex.h"
#include "platform/system/Bytes.h"

#include <cstdint>
#include <vector>

namespace thntfs {

/// A record named $MFT or $MFTMirr that a search has met and that passed its checks.
struct MftEvidence {
    std::uint64_t SectorNumber = 0; ///< absolute sector at which the record stands
    std::uint64_t FormatTime = 0;   ///< the file time that all four times of its standard information share
    std::uint64_t DataCluster = 0;  ///< logical cluster that the record gives for its data
    std::uint32_t RecordBytes = 0;
    std::uint32_t ClusterBytes = 0;
    std::uint32_t SectorsPerCluster = 0;
    std::uint8_t SectorsPerRecord = 0;
    bool Paired = false;                   ///< a twin pair has used this evidence
    std::uint64_t ContentHash[2] = {0, 0}; ///< of the record as it stands on the medium; equal for copies
};

using EvidenceList = std::vector<MftEvidence>;

/// Fields that a checked $MFT record gives of its volume; false where it gives none.
bool ReadMftEvidence(ConstBytes record, MftEvidence& evidence);

/// The same for a checked $MFTMirr record.
bool ReadMirrEvidence(ConstBytes record, MftEvidence& evidence);

/// The two lists of a Thorough search, in the order of discovery. A list takes kMaxEvidence records; a disk
/// with more holds little but copies, and SearchLimits says so.
class EvidenceCollector {
public:
    static constexpr std::size_t kMaxEvidence = 16384;

    /// Looks at a record that may be one of the two. `record` holds its allocated size in bytes, as read from
    /// `sector`.
    void Examine(ConstBytes record, std::uint64_t sector);

    EvidenceList MftList;
    EvidenceList MirrList;

private:
    std::vector<std::uint8_t> checked_; ///< the record in hand, as the checks leave it
};

/// Two copies of record 0 of a Master File Table, one in the table and one in its mirror, give a volume.
void PairMftTwins(EvidenceList& mftList, CandidateIndex& index);

/// Two copies of record 1 likewise.
void PairMirrTwins(EvidenceList& mirrList, CandidateIndex& index);

/// A $MFT record and a $MFTMirr record that no twin pair has used give a volume.
void PairMftWithMirr(const EvidenceList& mftList, const EvidenceList& mirrList, CandidateIndex& index);

} // namespace thntfs
