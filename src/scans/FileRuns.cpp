#include "scans/FileRuns.h"

#include "engine/AttributePieces.h"
#include "engine/EngineState.h"

#include <algorithm>
#include <bit>
#include <string_view>

namespace thntfs {

namespace {

constexpr std::u16string_view kCompressedStream = u"WofCompressedData";
constexpr std::uint64_t kMaxClusterBytes = 2U << 20U;
constexpr unsigned kMaxUnitExponent = 16;
constexpr std::uint16_t kCompressedFlags = 0xFF;

std::uint64_t DivideUp(std::uint64_t value, std::uint64_t by) {
    return value / by + (value % by != 0 ? 1 : 0);
}

} // namespace

bool HoldsFileData(ConstBytes record, const Attribute& attribute) {
    if (attribute.Type() != kTypeData) {
        return false;
    }
    return attribute.NameLength() == 0 || (attribute.NameLength() == kCompressedStream.size() &&
                                           AttributeName(record, attribute) == kCompressedStream);
}

std::uint64_t OwnClusterSectors(const Attribute& data) {
    const VolumeParams& volume = Engine.VolumeParams;
    const std::uint64_t clusters = data.LastCluster() + 1;
    if (clusters == 0) {
        return volume.SectorsPerCluster;
    }
    const std::uint64_t bytes = data.AllocatedBytes() / clusters;
    const bool sane = data.AllocatedBytes() % clusters == 0 && std::has_single_bit(bytes) &&
                      bytes >= volume.BytesPerSector && bytes <= kMaxClusterBytes;
    return sane ? bytes / volume.BytesPerSector : 0;
}

std::uint64_t NeededClusters(const Attribute& data, std::uint64_t clusterBytes) {
    if ((data.Flags() & kCompressedFlags) == 0) {
        return DivideUp(std::min(data.RealBytes(), data.InitialisedBytes()), clusterBytes);
    }
    const std::uint64_t unit = std::uint64_t{1}
                               << std::min<unsigned>(data.CompressionUnit(), kMaxUnitExponent);
    return DivideUp(DivideUp(data.RealBytes(), clusterBytes), unit) * unit;
}

} // namespace thntfs
