#include "content/RunStream.h"

#include "content/UnitDecoder.h"
#include "engine/AttributePieces.h"
#include "engine/EngineState.h"
#include "engine/SectorReader.h"

#include <algorithm>
#include <utility>

namespace thntfs {

namespace {

void Clear(Bytes bytes) { std::fill(bytes.begin(), bytes.end(), std::uint8_t{0}); }

} // namespace

ResidentStream::ResidentStream(StreamLayout layout)
    : ExactStream(layout.Size)
    , value_(std::move(layout.Value)) {
    value_.resize(layout.Size);
    Doubtful = layout.Doubtful;
}

void ResidentStream::Fill(std::uint64_t offset, Bytes buffer, std::size_t wanted, MissingData& /*missing*/) {
    std::copy_n(value_.begin() + static_cast<std::ptrdiff_t>(offset), wanted, buffer.begin());
}

RunStream::RunStream(StreamLayout layout)
    : ExactStream(layout.Size)
    , Layout(std::move(layout)) {
    Doubtful = Layout.Doubtful;
}

void RunStream::Fill(std::uint64_t offset, Bytes buffer, std::size_t wanted, MissingData& missing) {
    const std::uint64_t left = Layout.Initialised - std::min(Layout.Initialised, offset);
    const auto read = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, left));
    if (read != 0) {
        FillInitialised(offset, buffer, read, missing);
    }
    Clear(buffer.subspan(read, wanted - read));
}

void RunStream::FillFromRuns(std::uint64_t offset, Bytes buffer, std::size_t wanted, MissingData& missing) {
    const std::uint64_t clusterBytes = Layout.ClusterBytes;
    while (wanted != 0) {
        const std::uint64_t vcn = offset / clusterBytes;
        const std::uint64_t within = offset % clusterBytes;
        const MapRun* run = Layout.Runs.FindFrom(vcn);
        const std::uint64_t most = wanted / clusterBytes + 2; // clusters that the bytes can touch
        const bool before = run != nullptr && run->Vcn > vcn;
        const std::uint64_t clusters = run == nullptr ? most : (before ? run->Vcn : run->End()) - vcn;
        const auto bytes = static_cast<std::size_t>(
            std::min<std::uint64_t>(wanted, std::min(clusters, most) * clusterBytes - within));
        if (run == nullptr || before || run->Hole) {
            Clear(buffer.first(bytes));
        } else {
            ReadBytes(run->Lcn + (vcn - run->Vcn), within, buffer, bytes, missing);
        }
        offset += bytes;
        wanted -= bytes;
        buffer = buffer.subspan(bytes);
    }
}

// Whole sectors are read into the buffer itself, also beyond the wanted bytes if it has the room.
void RunStream::ReadBytes(std::uint64_t lcn, std::uint64_t within, Bytes buffer, std::size_t wanted,
                          MissingData& missing) {
    const std::size_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    std::uint64_t sector = SectorInCluster(lcn, within, Layout.ClusterBytes);
    if (const std::size_t skipped = within % sectorBytes; skipped != 0) {
        const std::size_t bytes = std::min(wanted, sectorBytes - skipped);
        ReadPartOfSector(sector++, skipped, buffer.first(bytes), missing);
        buffer = buffer.subspan(bytes);
        wanted -= bytes;
    }
    const std::size_t up = (wanted + sectorBytes - 1) / sectorBytes * sectorBytes;
    const std::size_t whole = up <= buffer.size() ? up : up - std::min(up, sectorBytes);
    if (whole != 0 && wanted != 0) {
        const ReadOutcome outcome = ReadSectorsCleared(buffer.first(whole), sector);
        missing.AddMissingOf(outcome, sector, std::min(whole, wanted));
        sector += whole / sectorBytes;
    }
    if (whole < wanted) {
        ReadPartOfSector(sector, 0, buffer.subspan(whole, wanted - whole), missing);
    }
}

void RunStream::ReadPartOfSector(std::uint64_t sector, std::size_t within, Bytes part, MissingData& missing) {
    sector_.resize(Engine.SourceDisk.BytesPerSector);
    const ReadOutcome outcome = ReadSectorsCleared(sector_, sector);
    missing.AddMissingOf(outcome, sector, part.size());
    std::copy_n(sector_.begin() + static_cast<std::ptrdiff_t>(within), part.size(), part.begin());
}

std::uint64_t RunStream::NextData(std::uint64_t offset) const {
    const std::uint64_t clusterBytes = Layout.ClusterBytes;
    const MapRun* run = Layout.Runs.FindAllocated(offset / clusterBytes);
    if (run == nullptr || run->Vcn > Layout.Initialised / clusterBytes) {
        return Size();
    }
    const std::uint64_t data = std::max(offset, run->Vcn * clusterBytes);
    return data < Layout.Initialised ? data : Size();
}

std::uint64_t RunStream::NextHole(std::uint64_t offset) const {
    const std::uint64_t clusterBytes = Layout.ClusterBytes;
    while (offset < Layout.Initialised) {
        const MapRun* run = Layout.Runs.Find(offset / clusterBytes);
        if (run == nullptr || run->Hole) {
            return offset;
        }
        if (run->End() > Layout.Initialised / clusterBytes) {
            return Layout.Initialised;
        }
        offset = run->End() * clusterBytes;
    }
    return std::min(offset, Size());
}

CompressedStream::CompressedStream(StreamLayout layout)
    : RunStream(std::move(layout)) {}

std::uint64_t CompressedStream::UnitBytes() const {
    return std::uint64_t{Layout.UnitClusters} * Layout.ClusterBytes;
}

std::uint64_t CompressedStream::ClustersOfUnit(std::uint64_t unit) const {
    const std::uint64_t end = (unit + 1) * Layout.UnitClusters;
    std::uint64_t clusters = 0;
    for (std::uint64_t vcn = unit * Layout.UnitClusters; vcn < end;) {
        const MapRun* run = Layout.Runs.FindAllocated(vcn);
        if (run == nullptr || run->Vcn >= end) {
            break;
        }
        vcn = std::max(vcn, run->Vcn);
        clusters += std::min(end, run->End()) - vcn;
        vcn = run->End();
    }
    return clusters;
}

void CompressedStream::FillInitialised(std::uint64_t offset, Bytes buffer, std::size_t wanted,
                                       MissingData& missing) {
    while (wanted != 0) {
        const std::uint64_t unit = offset / UnitBytes();
        const std::uint64_t within = offset % UnitBytes();
        const auto bytes = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, UnitBytes() - within));
        const std::uint64_t clusters = ClustersOfUnit(unit);
        if (clusters == 0) {
            Clear(buffer.first(bytes));
        } else if (clusters == Layout.UnitClusters) {
            FillFromRuns(offset, buffer, bytes, missing);
        } else {
            LoadUnit(unit, clusters, missing);
            std::copy_n(plain_.begin() + static_cast<std::ptrdiff_t>(within), bytes, buffer.begin());
        }
        offset += bytes;
        wanted -= bytes;
        buffer = buffer.subspan(bytes);
    }
}

// The clusters that are stored stand in front of those that were saved. What lies in the last of them behind
// the chunks is nobody's loss.
void CompressedStream::LoadUnit(std::uint64_t unit, std::uint64_t clusters, MissingData& missing) {
    if (unit == unit_) {
        return;
    }
    unit_ = unit;
    plain_.resize(std::min(UnitBytes(), Layout.Initialised - unit * UnitBytes()));
    const std::vector<StoredPart> parts = ReadStored(unit * Layout.UnitClusters, clusters);
    const UnitResult result = DecompressUnit(stored_, plain_);
    for (const StoredPart& part : parts) {
        const std::uint64_t used = std::max(result.Consumed, part.Offset) - part.Offset;
        missing.AddMissingOf(part.Outcome, part.Sector, std::min(used, part.Bytes));
    }
    // A driver ends a unit early where nothing but zeros follows. It keeps no cluster then that it doesn't
    // need, and none at all for zeros alone.
    const bool early = result.Ended && (result.Consumed <= sizeof(std::uint16_t) ||
                                        stored_.size() - result.Consumed >= Layout.ClusterBytes);
    if (!result.Sound || early) {
        Doubtful.Add(Doubt::DataDamaged);
    }
}

std::vector<CompressedStream::StoredPart> CompressedStream::ReadStored(std::uint64_t vcn,
                                                                       std::uint64_t clusters) {
    const std::uint64_t clusterBytes = Layout.ClusterBytes;
    stored_.assign(clusters * clusterBytes, 0);
    std::vector<StoredPart> parts;
    for (std::uint64_t done = 0; done < clusters;) {
        const MapRun* run = Layout.Runs.Find(vcn + done);
        if (run == nullptr || run->Hole) {
            break; // clusters behind a hole of the unit belong to no chunk
        }
        const std::uint64_t count = std::min(clusters - done, run->End() - (vcn + done));
        StoredPart part = {.Outcome = {},
                           .Sector =
                               SectorInCluster(run->Lcn + (vcn + done - run->Vcn), 0, Layout.ClusterBytes),
                           .Offset = done * clusterBytes,
                           .Bytes = count * clusterBytes};
        part.Outcome = ReadSectorsCleared(Bytes(stored_).subspan(part.Offset, part.Bytes), part.Sector);
        parts.push_back(std::move(part));
        done += count;
    }
    return parts;
}

// A unit is data up to its end, although its last clusters are saved.
std::uint64_t CompressedStream::NextData(std::uint64_t offset) const {
    const std::uint64_t stored = RunStream::NextData(offset / UnitBytes() * UnitBytes());
    const std::uint64_t data = std::max(offset, stored / UnitBytes() * UnitBytes());
    return stored < Layout.Initialised && data < Layout.Initialised ? data : Size();
}

std::uint64_t CompressedStream::NextHole(std::uint64_t offset) const {
    while (offset < Layout.Initialised) {
        const std::uint64_t unit = offset / UnitBytes();
        const MapRun* run = Layout.Runs.FindAllocated(unit * Layout.UnitClusters);
        if (run == nullptr || run->Vcn / Layout.UnitClusters > unit) {
            return offset;
        }
        if (run->End() > Layout.Initialised / Layout.ClusterBytes) {
            return Layout.Initialised;
        }
        offset = ((run->End() - 1) / Layout.UnitClusters + 1) * UnitBytes();
    }
    return std::min(offset, Size());
}

} // namespace thntfs
