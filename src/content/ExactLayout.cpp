#include "content/ExactLayout.h"

#include "engine/AttributePieces.h"
#include "engine/ClusterSize.h"
#include "engine/EngineState.h"
#include "engine/SectorReader.h"

#include <algorithm>
#include <bit>

namespace thntfs {

namespace {

constexpr std::uint16_t kCompressionMask = 0xFF;
constexpr std::uint16_t kFlagEncrypted = 0x4000;
constexpr unsigned kUsualExponent = 4; // 16 clusters
constexpr unsigned kLargestExponent = 8;
constexpr std::uint64_t kMaxUnit = 16U << 20U;
constexpr std::uint64_t kMaxFileClusters = std::uint64_t{1} << 32U;

std::uint64_t ClustersFor(std::uint64_t bytes, std::uint32_t clusterBytes) {
    return bytes / clusterBytes + (bytes % clusterBytes != 0 ? 1 : 0);
}

// Sectors of the volume that lie in front of the medium's first, where the medium was cut at the front.
std::uint64_t SectorsInFront() {
    const std::uint64_t start = Engine.VolumeParams.StartSector;
    return start > INT64_MAX ? 0 - start : 0;
}

// Bytes from the volume's start on that may hold its clusters. A size that no boot sector states is a guess.
std::uint64_t BytesForClusters() {
    const VolumeParams& volume = Engine.VolumeParams;
    const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    const std::uint64_t mediumSectors = MediumBytes() / std::max<std::uint64_t>(sectorBytes, 1);
    const std::uint64_t front = SectorsInFront();
    const std::uint64_t sectors =
        front != 0 ? mediumSectors + front : mediumSectors - std::min(mediumSectors, volume.StartSector);
    const bool stated = volume.VolumeSerial != 0 && volume.TotalSectors != 0;
    return (stated ? std::min(sectors, volume.TotalSectors) : sectors) * sectorBytes;
}

bool ClustersAreUsable() {
    const std::uint32_t clusterBytes = Engine.VolumeParams.ClusterBytes;
    const std::uint32_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    return sectorBytes != 0 && clusterBytes != 0 && clusterBytes <= kMaxClusterBytes &&
           clusterBytes % sectorBytes == 0;
}

/// Makes out a stream that isn't resident.
class LayoutMaker {
public:
    LayoutMaker(const AttributePieceList& pieces, bool whole)
        : pieces_(pieces)
        , first_(pieces.front().second)
        , whole_(whole && first_.FirstCluster() == 0) {}

    StreamLayout Make(std::uint64_t sizeWanted) {
        TakeRuns();
        TakeClusterSize();
        TakeSizes(sizeWanted);
        TakeUnit();
        CutRuns();
        CheckRuns();
        return std::move(layout_);
    }

private:
    void AddDoubt(Doubt doubt) { layout_.Doubtful.Add(doubt); }
    void TakeRuns();
    void TakeClusterSize();
    void TakeSizes(std::uint64_t sizeWanted);
    void TakeUnit();
    void CutRuns();
    void CheckRuns();

    const AttributePieceList& pieces_;
    Attribute first_;
    bool whole_; ///< no piece is missing, and the first states what it should
    StreamLayout layout_;
};

void LayoutMaker::TakeRuns() {
    for (const auto& [record, piece] : pieces_) {
        const std::uint64_t end = piece.LastCluster() + 1;
        if (!layout_.Runs.Add(RunListOf(record, piece), piece.FirstCluster(), end)) {
            AddDoubt(Doubt::RunsDamaged);
        }
        if ((piece.Flags() & kFlagEncrypted) != 0) {
            AddDoubt(Doubt::Encrypted);
        }
    }
}

// The attribute shows what its clusters were when it was laid out.
void LayoutMaker::TakeClusterSize() {
    const std::uint32_t ofVolume = Engine.VolumeParams.ClusterBytes;
    layout_.ClusterBytes = ofVolume;
    const std::uint64_t clusters = pieces_.back().second.LastCluster() + 1;
    const std::uint64_t allocated = first_.AllocatedBytes();
    if (!whole_ || clusters == 0 || clusters > kVcnLimit || allocated / clusters == ofVolume) {
        return;
    }
    const std::uint64_t own = allocated / clusters;
    const bool sane = allocated % clusters == 0 && std::has_single_bit(own) && own <= kMaxClusterBytes &&
                      own % Engine.SourceDisk.BytesPerSector == 0;
    const auto fits = [&](const MapRun& run) {
        return run.Hole || run.Lcn + run.Clusters <= BytesForClusters() / own;
    };
    const std::vector<MapRun>& runs = layout_.Runs.Runs();
    if (sane && std::all_of(runs.begin(), runs.end(), fits)) {
        layout_.ClusterBytes = static_cast<std::uint32_t>(own);
    } else if (pieces_.size() == 1) {
        AddDoubt(Doubt::ClusterSize);
    }
}

void LayoutMaker::TakeSizes(std::uint64_t sizeWanted) {
    const std::uint64_t most = kMaxFileClusters * layout_.ClusterBytes;
    const std::uint64_t told = std::min(layout_.Runs.EndVcn(), kMaxFileClusters) * layout_.ClusterBytes;
    if (first_.FirstCluster() == 0) {
        layout_.Size = first_.RealBytes();
        layout_.Initialised = first_.InitialisedBytes();
    } else {
        layout_.Size = sizeWanted != 0 ? sizeWanted : told;
        layout_.Initialised = layout_.Size;
    }
    if (layout_.Size > most) {
        AddDoubt(Doubt::SizeImpossible);
        layout_.Size = told;
    }
    layout_.Initialised = std::min(layout_.Initialised, layout_.Size);
}

void LayoutMaker::TakeUnit() {
    if ((first_.Flags() & kCompressionMask) == 0) {
        return;
    }
    unsigned exponent = first_.FirstCluster() == 0 ? first_.CompressionUnit() : kUsualExponent;
    if (exponent > kLargestExponent || (std::uint64_t{layout_.ClusterBytes} << exponent) > kMaxUnit) {
        AddDoubt(Doubt::CompressionUnit);
        exponent = 0;
    }
    layout_.UnitClusters = 1U << (exponent == 0 ? kUsualExponent : exponent);
}

void LayoutMaker::CutRuns() {
    const std::uint64_t volume = ClustersFor(BytesForClusters(), layout_.ClusterBytes);
    const std::uint64_t wanted = ClustersFor(layout_.Initialised, layout_.ClusterBytes);
    const std::uint64_t first =
        ClustersFor(SectorsInFront() * Engine.SourceDisk.BytesPerSector, layout_.ClusterBytes);
    layout_.Runs.CutToVolume(first, volume, [&](std::uint64_t vcn, std::uint64_t clusters) {
        if (vcn < wanted) {
            const std::uint64_t end = std::min(wanted, vcn + clusters) * layout_.ClusterBytes;
            layout_.BytesBehindEnd += std::min(end, layout_.Initialised) - vcn * layout_.ClusterBytes;
        }
    });
}

// Each cluster in front of the end must have a run; that a piece is missing has been told of before. The last
// unit of compressed data may lack the hole that closes it.
void LayoutMaker::CheckRuns() {
    std::uint64_t told = 0;
    for (const MapRun& run : layout_.Runs.Runs()) {
        if (run.Vcn > told) {
            break;
        }
        told = run.End();
    }
    const std::uint64_t unit = std::max(1U, layout_.UnitClusters);
    told += (unit - told % unit) % unit;
    if (whole_ && layout_.BytesBehindEnd == 0 &&
        told < ClustersFor(layout_.Initialised, layout_.ClusterBytes)) {
        AddDoubt(Doubt::RunsMissing);
    }
}

StreamLayout ResidentLayout(ConstBytes record, const Attribute& data) {
    StreamLayout layout;
    const ConstBytes value = data.Value();
    layout.Resident = true;
    layout.Value.assign(value.begin(), value.end());
    layout.Size = std::min<std::uint64_t>(data.ValueLength(), record.size());
    if (value.size() < data.ValueLength()) {
        layout.Doubtful.Add(Doubt::RunsDamaged);
    }
    if ((data.Flags() & kFlagEncrypted) != 0) {
        layout.Doubtful.Add(Doubt::Encrypted);
    }
    return layout;
}

} // namespace

StreamLayout MakeLayout(AttributePieceList pieces, std::uint64_t sizeWanted, bool whole) {
    if (pieces.front().second.NonResident() == 0) {
        return ResidentLayout(pieces.front().first, pieces.front().second);
    }
    if (!ClustersAreUsable()) {
        StreamLayout layout = EmptyLayout(sizeWanted);
        layout.Doubtful.Add(Doubt::ClusterSize);
        return layout;
    }
    std::erase_if(pieces, [](const auto& piece) { return piece.second.NonResident() == 0; });
    std::stable_sort(pieces.begin(), pieces.end(), [](const auto& a, const auto& b) {
        return a.second.FirstCluster() < b.second.FirstCluster();
    });
    return LayoutMaker(pieces, whole).Make(sizeWanted);
}

StreamLayout EmptyLayout(std::uint64_t size) {
    constexpr std::uint32_t kAnyCluster = 4096;
    StreamLayout layout;
    layout.ClusterBytes = kAnyCluster;
    layout.Size = std::min(size, kMaxFileClusters * kAnyCluster);
    return layout;
}

} // namespace thntfs
