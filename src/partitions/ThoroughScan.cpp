#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/Host.h"
#include "engine/SectorReader.h"
#include "partitions/BootSector.h"
#include "partitions/BootSectorRoute.h"
#include "partitions/LostStarts.h"
#include "partitions/MftEvidence.h"
#include "partitions/PartitionSearch.h"
#include "platform/system/ReadBuffer.h"

#include <algorithm>
#include <new>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint64_t kBatchSectors = 128;
constexpr std::uint32_t kMaxRecordBytes = 8192;
constexpr std::uint8_t kNopOfJump = 0x90;

class SectorWalk {
public:
    SectorWalk(std::uint64_t firstSector, std::uint64_t endSector, LostStarts* traces)
        : traces_(traces)
        , position_(firstSector)
        , end_(endSector)
        , sectorBytes_(Engine.SourceDisk.BytesPerSector)
        , buffer_(kBatchSectors * sectorBytes_) {}

    void Run() {
        while (position_ < end_ && JobMayGoOn()) {
            Host().SearchPosition(position_, end_);
            const std::size_t slots = ReadBatch();
            for (std::size_t slot = 0; slot < slots; ++slot) {
                ExamineSlot(slot);
            }
            position_ += kBatchSectors;
        }
    }

    /// Sectors of the range from the batch in hand on.
    [[nodiscard]] std::uint64_t SectorsLeft() const { return end_ - position_; }

    /// Also after a stop: what was collected up to then may make a volume.
    void PairUp() {
        PairMftTwins(evidence_.MftList, index_);
        PairMirrTwins(evidence_.MirrList, index_);
        PairMftWithMirr(evidence_.MftList, evidence_.MirrList, index_);
    }

private:
    static void ReadAndCount(Bytes buffer, std::uint64_t sector) {
        Engine.Losses.Sectors += ReadSectorsCleared(buffer, sector).BadSectors.size();
    }

    // Gives the slots read. The last stretch is read sector by sector, up to the end of the range.
    std::size_t ReadBatch() {
        if (position_ + kBatchSectors < end_) {
            ReadAndCount(buffer_, position_);
            return kBatchSectors;
        }
        const auto slots = static_cast<std::size_t>(end_ - position_);
        for (std::size_t slot = 0; slot < slots; ++slot) {
            if (!JobMayGoOn()) {
                return slot;
            }
            ReadAndCount(Bytes(buffer_).subspan(slot * sectorBytes_, sectorBytes_), position_ + slot);
        }
        return slots;
    }

    void ExamineSlot(std::size_t slot) {
        const ConstBytes sector = ConstBytes(buffer_).subspan(slot * sectorBytes_, sectorBytes_);
        if (traces_ != nullptr) {
            traces_->NoteSector(sector, position_ + slot);
        }
        if (sector[2] == kNopOfJump && IsNtfsBootSector(sector)) {
            FollowBootSector(sector.first(kBootSectorBytes), position_ + slot, SecondSight::Mark, index_);
        } else if (U32At(sector, 0) == kFileMagic &&
                   (UsaOffset(sector) == kUsaOffsetOld || UsaOffset(sector) == kUsaOffsetNew)) {
            FollowRecord(sector, slot);
        }
    }

    void FollowRecord(ConstBytes sector, std::size_t slot) {
        const std::uint32_t bytes = BytesAllocated(sector);
        const std::size_t sectors = bytes / sectorBytes_;
        if (bytes == 0 || bytes >= kMaxRecordBytes || bytes < sectorBytes_ || bytes % sectorBytes_ != 0 ||
            (sectors != 1 && sectors % 2 != 0)) {
            return;
        }
        if (!JobMayGoOn()) {
            return;
        }
        record_.assign(bytes, 0);
        ReadSectors(record_, position_ + slot);
        evidence_.Examine(record_, position_ + slot);
    }

    LostStarts* traces_;
    std::uint64_t position_;
    std::uint64_t end_;
    std::size_t sectorBytes_;
    ReadBuffer buffer_;
    std::vector<std::uint8_t> record_;
    CandidateIndex index_;
    EvidenceCollector evidence_;
};

} // namespace

std::uint32_t ThoroughScan(std::uint64_t firstSector, std::uint64_t endSector, LostStarts* traces) {
    if (Engine.SourceDisk.BytesPerSector < kBootSectorBytes) {
        return Engine.ScanRunFlag;
    }
    Engine.Losses = ScanLosses();
    SectorWalk walk(firstSector, endSector, traces);
    try {
        walk.Run();
    } catch (const CUserException&) {
        // The user has seen the box. What was collected so far counts.
        Engine.Losses.Sectors += walk.SectorsLeft();
    } catch (const std::bad_alloc&) {
    }
    try {
        walk.PairUp();
    } catch (const std::bad_alloc&) {
    }
    return Engine.ScanRunFlag;
}

} // namespace thntfs
