#include "content/ContentJob.h"
#include "content/EntryContent.h"
#include "content/Lznt1.h"
#include "engine/EngineState.h"
#include "engine/FileWrites.h"
#include "engine/SectorReader.h"

#include <algorithm>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint64_t kMaxUnitBytes = 64U << 20U;
constexpr std::uint64_t kMaxRatio = 16; // a unit of 16 clusters takes at least one on the medium

// Bytes of one compressed unit, 0 where the record states an impossible one.
std::uint64_t UnitBytes(unsigned unitExponent) {
    const std::uint64_t clusterBytes = Engine.VolumeParams.ClusterBytes;
    if (clusterBytes == 0 || clusterBytes > kMaxUnitBytes || unitExponent > 16) {
        return 0;
    }
    const std::uint64_t bytes = clusterBytes << unitExponent;
    return bytes <= kMaxUnitBytes ? bytes : 0;
}

// Collects the clusters of one unit and puts the unit out when it is complete.
class UnitWriter {
public:
    UnitWriter(File& outputHandle, std::uint64_t size, std::uint64_t unitBytes, MissingData& missing)
        : outputHandle_(outputHandle)
        , missing_(missing)
        , size_(size)
        , raw_(static_cast<std::size_t>(unitBytes))
        , plain_(static_cast<std::size_t>(unitBytes)) {}

    /// Clusters that the unit can still take.
    [[nodiscard]] std::uint32_t Room() const {
        return static_cast<std::uint32_t>((raw_.size() - collected_) / Engine.VolumeParams.ClusterBytes);
    }

    /// Bytes taken from the medium so far. A file can't take more than its volume holds.
    [[nodiscard]] std::uint64_t Taken() const { return taken_; }

    void Collect(std::uint64_t sector, std::uint32_t clusters) {
        const Bytes place =
            Bytes(raw_).subspan(collected_, std::size_t{clusters} * Engine.VolumeParams.ClusterBytes);
        const ReadOutcome outcome = ReadSectorsCleared(place, sector);
        missing_.AddBehindEnd(sector, place.size());
        KeepUnread(outcome, sector, place.size());
        collected_ += place.size();
        taken_ += place.size();
        if (collected_ == raw_.size()) {
            SettleUnread(BytesWanted());
            Put(raw_); // a unit that compression would not have made smaller
        }
    }

    /// A hole stands for the clusters that compression has saved: the unit is complete.
    void Close() {
        const ConstBytes collected = ConstBytes(raw_).first(collected_);
        if (IsChunkChain(collected)) {
            SettleUnread(ChunksEnd(collected, BytesWanted()));
            Put(ConstBytes(plain_).first(DecompressLznt1(collected, plain_)));
        } else {
            SettleUnread(collected.size());
            Put(collected);
        }
    }

private:
    struct UnreadPlace {
        std::uint64_t Sector;
        std::uint64_t Offset; ///< of its first byte in the unit
    };

    /// Bytes of the unit that the file's size leaves for it.
    [[nodiscard]] std::uint64_t BytesWanted() const {
        return std::min<std::uint64_t>(size_ - std::min(size_, Engine.BytesWritten), raw_.size());
    }

    void KeepUnread(const ReadOutcome& outcome, std::uint64_t sector, std::uint64_t bytes) {
        const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
        for (const std::uint64_t unread :
             UnreadSectors(outcome, sector + bytes / std::max<std::uint64_t>(sectorBytes, 1))) {
            unread_.push_back({unread, collected_ + (unread - sector) * sectorBytes});
        }
    }

    /// What lies in the last cluster behind the `dataBytes` bytes of data is nobody's loss.
    void SettleUnread(std::uint64_t dataBytes) {
        for (const UnreadPlace& place : unread_) {
            if (place.Offset < dataBytes) {
                missing_.AddSector(place.Sector);
            }
        }
        unread_.clear();
    }

    void Put(ConstBytes bytes) {
        Engine.BytesWritten += bytes.size();
        if (!bytes.empty()) {
            WriteCatalogue(outputHandle_, bytes);
        }
        collected_ = 0;
    }

    File& outputHandle_;
    MissingData& missing_;
    std::uint64_t size_; ///< of the file, in bytes
    std::vector<std::uint8_t> raw_;
    std::vector<std::uint8_t> plain_;
    std::vector<UnreadPlace> unread_; ///< in the unit in hand
    std::size_t collected_ = 0;
    std::uint64_t taken_ = 0;
};

} // namespace

void WriteCompressedRuns(const CatalogueItem& entry, File& outputHandle, const std::vector<MftExtent>& runs,
                         unsigned unitExponent, MissingData& missing) {
    const std::uint64_t unitBytes = UnitBytes(unitExponent);
    if (unitBytes == 0) {
        return;
    }
    const std::uint64_t limit = VolumeByteLimit();
    const std::uint64_t end =
        std::min(entry.Size, limit > ~std::uint64_t{0} / kMaxRatio ? limit : kMaxRatio * limit);
    UnitWriter unit(outputHandle, entry.Size, unitBytes, missing);
    for (const MftExtent& run : runs) {
        if (ContentStopped()) {
            break;
        }
        if (run.StartCluster == 0) {
            if (Engine.BytesWritten >= end) {
                break;
            }
            unit.Close();
        }
        std::uint64_t sector = SectorOfCluster(run.StartCluster);
        std::uint32_t left = run.StartCluster == 0 ? 0 : run.Clusters;
        while (left > 0 && Engine.BytesWritten < end && unit.Taken() < limit && !ContentStopped()) {
            const std::uint32_t clusters = std::min(left, unit.Room());
            unit.Collect(sector, clusters);
            left -= clusters;
            sector += std::uint64_t{clusters} * Engine.VolumeParams.SectorsPerCluster;
        }
        ReportContentProgress(entry.Size);
    }
}

} // namespace thntfs
