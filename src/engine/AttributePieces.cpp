#include "engine/AttributePieces.h"

#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/SectorReader.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::uint64_t kMaxListValue = 256U << 10U;
constexpr std::size_t kListFields = 26; // of an entry, before its name

std::vector<std::uint8_t> ReadListByRuns(ConstBytes record, const Attribute& list, bool& whole) {
    RunMap runs;
    whole = runs.Add(RunListOf(record, list), list.FirstCluster()) && whole;
    const std::uint64_t size = std::min(list.RealBytes(), kMaxListValue);
    const std::uint64_t sectorBytes = std::max<std::uint64_t>(Engine.SourceDisk.BytesPerSector, 1);
    std::vector<std::uint8_t> value((size + sectorBytes - 1) / sectorBytes * sectorBytes);
    whole = ReadByRuns(runs, 0, value) && whole;
    value.resize(size);
    return value;
}

bool MediumHolds(std::uint64_t sector, std::uint64_t bytes) {
    const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    const std::uint64_t size = MediumBytes();
    return sectorBytes != 0 && sector <= size / sectorBytes && bytes <= size - sector * sectorBytes;
}

} // namespace

bool MayHaveNumber(ConstBytes record, std::uint64_t number) {
    return UsaOffset(record) != kUsaOffsetNew ||
           OwnRecordNumber(record) == static_cast<std::uint32_t>(number);
}

bool SequenceFits(ConstBytes record, std::uint16_t sequence) {
    const std::uint16_t own = RecordSequence(record);
    const auto next = static_cast<std::uint16_t>(sequence == UINT16_MAX ? 1 : sequence + 1);
    return sequence == 0 || own == sequence || (!IsInUse(record) && own == next);
}

std::vector<std::uint8_t> ReadListValue(ConstBytes record, const Attribute& list, bool& whole) {
    if (list.NonResident() != 0) {
        return ReadListByRuns(record, list, whole);
    }
    const ConstBytes value = list.Value();
    whole = whole && value.size() == list.ValueLength();
    return {value.begin(), value.end()};
}

std::vector<ListedPiece> ListedPieces(ConstBytes value, bool& whole) {
    std::vector<ListedPiece> pieces;
    while (!value.empty()) {
        const std::size_t length = U16At(value, 4);
        const std::size_t units = U8At(value, 6);
        const std::size_t nameAt = U8At(value, 7);
        if (length < kListFields || length > value.size() || (units != 0 && nameAt + 2 * units > length)) {
            whole = false;
            break;
        }
        pieces.push_back({U32At(value, 0), UnitsAt(value, nameAt, units), U64At(value, 8), U64At(value, 16),
                          U16At(value, 24)});
        value = value.subspan(length);
    }
    return pieces;
}

std::u16string AttributeName(ConstBytes record, const Attribute& attribute) {
    return attribute.NameLength() == 0
               ? std::u16string()
               : UnitsAt(record, attribute.Offset() + attribute.NameOffset(), attribute.NameLength());
}

std::optional<Attribute> FindListed(ConstBytes record, const ListedPiece& piece) {
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() != kTypeEnd; walk.Next()) {
        const Attribute attribute = walk.Current();
        const std::uint64_t firstVcn = attribute.NonResident() != 0 ? attribute.FirstCluster() : 0;
        if (attribute.Type() == piece.Type && attribute.Id() == piece.Id && firstVcn == piece.FirstVcn &&
            AttributeName(record, attribute) == piece.Name) {
            return attribute;
        }
    }
    return std::nullopt;
}

ConstBytes RunListOf(ConstBytes record, const Attribute& attribute) {
    const std::uint64_t end = attribute.Offset() + attribute.Length();
    const std::uint64_t start = std::min(attribute.RunListStart(), end);
    return Part(record, start, end - start);
}

std::uint64_t SectorInCluster(std::uint64_t lcn, std::uint64_t offset, std::uint32_t clusterBytes) {
    const std::uint64_t sectorBytes = std::max<std::uint64_t>(Engine.SourceDisk.BytesPerSector, 1);
    return Engine.VolumeParams.StartSector + lcn * (clusterBytes / sectorBytes) + offset / sectorBytes;
}

bool ReadByRuns(const RunMap& runs, std::uint64_t offset, Bytes buffer) {
    const std::uint32_t clusterBytes = Engine.VolumeParams.ClusterBytes;
    std::fill(buffer.begin(), buffer.end(), std::uint8_t{0});
    bool whole = clusterBytes != 0;
    while (!buffer.empty() && clusterBytes != 0) {
        const std::uint64_t vcn = offset / clusterBytes;
        const std::uint64_t within = offset % clusterBytes;
        const MapRun* run = runs.FindFrom(vcn);
        const bool held = run != nullptr && run->Vcn <= vcn;
        const std::uint64_t clusters = run == nullptr ? buffer.size() : (held ? run->End() : run->Vcn) - vcn;
        const std::uint64_t most = buffer.size() / clusterBytes + 2; // spares a product that wraps
        const Bytes part = buffer.first(static_cast<std::size_t>(
            std::min<std::uint64_t>(buffer.size(), std::min(clusters, most) * clusterBytes - within)));
        if (held && !run->Hole) {
            const std::uint64_t sector = SectorInCluster(run->Lcn + (vcn - run->Vcn), within, clusterBytes);
            whole = MediumHolds(sector, part.size()) && ReadSectorsCleared(part, sector).Whole() && whole;
        }
        whole = whole && held;
        offset += part.size();
        buffer = buffer.subspan(part.size());
    }
    return whole;
}

} // namespace thntfs
