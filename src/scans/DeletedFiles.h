#pragma once

#include "platform/system/Bytes.h"
#include "scans/ClaimSpace.h"
#include "scans/SplitFiles.h"
#include "scans/UsedClusters.h"

#include <cstdint>
#include <deque>
#include <vector>

namespace thntfs {

class Attribute;
class ClusterSet;

inline constexpr std::uint32_t kNoFile = 0xFFFFFFFF;

/// What a record is to a scan's account of clusters.
struct Claim {
    std::uint32_t File = kNoFile; ///< its file, if that is judged at the end
    std::uint8_t Condition = 0;   ///< as SetCondition takes it, where it is known already
};

/// Sectors of the volume that a deleted file's data lies in.
struct ClaimedRun {
    std::uint64_t First = 0;
    std::uint32_t Count = 0;
    std::uint32_t File = kNoFile;
};

struct DeletedFile {
    std::uint64_t Stamp = 0;        ///< the latest of created, modified and changed
    std::uint64_t LogSequence = 0;  ///< of the record's last change
    std::uint64_t Sectors = 0;      ///< of its data, those behind the volume's end too
    std::uint32_t EntryId = 0;      ///< 0 while it has no entry
    std::uint32_t RecordNumber = 0; ///< of the record; in the older form none, that is 0
    std::uint16_t Sequence = 0;
    bool Sound = true; ///< all of its runs are known

    /// Which of two files had a cluster later: true where `other` was the first.
    [[nodiscard]] bool IsLaterThan(const DeletedFile& other) const {
        return Stamp != other.Stamp ? Stamp > other.Stamp : LogSequence > other.LogSequence;
    }
};

/// The deleted files of a volume with the runs of their data, as a scan meets them.
class DeletedFiles {
public:
    explicit DeletedFiles(const ClaimSpace& space)
        : space_(space) {}

    /// A checked record that isn't in use, or is no longer.
    Claim Take(ConstBytes record);

    /// The entry of a file that Take has put down.
    void SetEntry(std::uint32_t file, std::uint32_t entryId) { files_[file].EntryId = entryId; }

    /// Files have been left out, or will be: nothing is certain any more, and none gets judged.
    void GiveUp() { gaveUp_ = true; }

    /// Judges all files that have an entry; those that can't be judged stay as they are. Once. Passes
    /// CUserException on.
    void Judge(const ClusterSet& used, UsedBy by);

private:
    Claim TakeBase(ConstBytes record);
    Claim TakeSplit(ConstBytes record, const DeletedFile& file);
    Claim Keep(const DeletedFile& file);
    bool TakeRuns(ConstBytes record, const Attribute& data, DeletedFile& file);
    void TakePieces(ConstBytes record, std::uint64_t baseReference);
    DataPiece PieceOf(ConstBytes record, const Attribute& data, std::uint64_t baseReference);
    std::uint64_t AddRun(std::uint64_t lcn, std::uint64_t clusters, std::uint64_t clusterSectors,
                         std::uint32_t file);
    void JoinPieces();
    void SweepAndJudge(const ClusterSet& used, UsedBy by);

    ClaimSpace space_;
    std::deque<DeletedFile> files_;
    std::vector<ClaimedRun> runs_;
    SplitFiles split_;
    bool gaveUp_ = false;
};

} // namespace thntfs
