#include "scaninfo/ScanInfo.h"

#include "engine/StoredRecords.h"
#include "platform/files/Paths.h"
#include "platform/media/Medium.h"
#include "platform/system/Text.h"
#include "scaninfo/ScanInfoJob.h"
#include "scaninfo/ScanInfoNames.h"

#include <algorithm>
#include <array>

namespace thntfs {

namespace {

constexpr std::size_t kMagicBytes = 4;

ScanInfoKind KindOfMagic(ConstBytes start) {
    switch (U32At(start, 0)) {
    case kTreeInfoMagic:
        return ScanInfoKind::Tree;
    case kPartitionInfoMagic:
        return ScanInfoKind::Partitions;
    default:
        return ScanInfoKind::None;
    }
}

} // namespace

ScanInfoProbe ProbeScanInfo(const std::string& path) {
    ScanInfoProbe probe;
    const MediumResult file = OpenMedium(path);
    if (file.Handle == nullptr || file.Handle->DeviceSectorBytes() != 0 ||
        file.Handle->SizeBytes() < kMagicBytes) {
        return probe;
    }
    std::array<std::uint8_t, kMagicBytes + kStoredDiskBytes> start{};
    if (file.Handle->ReadAt(0, start) != kErrorNone) {
        return probe;
    }
    probe.Kind = KindOfMagic(start);
    if (probe.Kind != ScanInfoKind::None && file.Handle->SizeBytes() >= start.size()) {
        StoredDisk stored{};
        std::copy(start.begin() + kMagicBytes, start.end(), stored.begin());
        bool ignored = false;
        probe.Medium = NarrowText(DecodeDisk(stored, ignored).Description);
    }
    return probe;
}

ScanInfoKind ScanInfoKindOfName(const std::string& path) {
    if (path.ends_with(kTreeInfoExtension)) {
        return ScanInfoKind::Tree;
    }
    return path.ends_with(kPartitionInfoExtension) ? ScanInfoKind::Partitions : ScanInfoKind::None;
}

const char* InvalidScanInfoText(ScanInfoKind kind) {
    return kind == ScanInfoKind::Tree ? kTreeInfoTexts.Invalid : kPartitionInfoTexts.Invalid;
}

bool DescriptionFits(const std::string& mediumPath) {
    const std::string absolute = AbsolutePath(mediumPath);
    const std::u16string description = WideText(absolute);
    return description.size() <= kMaxDescriptionUnits && NarrowText(description) == absolute;
}

} // namespace thntfs
