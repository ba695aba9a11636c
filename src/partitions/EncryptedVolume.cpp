#include "partitions/EncryptedVolume.h"

#include "engine/LittleEndian.h"

namespace thntfs {

namespace {

constexpr std::uint64_t kNameAt = 3;
constexpr std::uint64_t kFixedName = 0x2D53462D4556462D;    // "-FVE-FS-"
constexpr std::uint64_t kPortableName = 0x312E344E4957534D; // "MSWIN4.1", which FAT volumes have too

// A portable volume has the GUID of its metadata here, one of two.
constexpr std::uint64_t kGuidAt = 424;
constexpr std::uint64_t kWholeLow = 0x4AD82E294967D63B;
constexpr std::uint64_t kWholeHigh = 0x01D0E339A3F69983;
constexpr std::uint64_t kUsedSpaceLow = 0x4D0EDD8092A84D3B;
constexpr std::uint64_t kUsedSpaceHigh = 0xD8AE4E28E3B14E9E;

bool HasMetadataGuid(ConstBytes sector) {
    const std::uint64_t low = U64At(sector, kGuidAt);
    const std::uint64_t high = U64At(sector, kGuidAt + 8);
    return (low == kWholeLow && high == kWholeHigh) || (low == kUsedSpaceLow && high == kUsedSpaceHigh);
}

} // namespace

bool IsEncryptedBootSector(ConstBytes sector) {
    const std::uint64_t name = U64At(sector, kNameAt);
    return name == kFixedName || (name == kPortableName && HasMetadataGuid(sector));
}

} // namespace thntfs
