#include "content/PreviewContent.h"

#include "engine/DecodeRecord.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "engine/RunList.h"
#include "engine/SectorReader.h"
#include "platform/system/CoreText.h"

#include <algorithm>
#include <new>

namespace thntfs {

namespace {

constexpr std::uint64_t kMaxPreviewBytes = 0x1E00000;
constexpr std::uint64_t kMaxPreviewCluster = 64U << 20U;

void CopyValue(ConstBytes value) {
    const std::size_t bytes = std::min(value.size(), Engine.PreviewBuffer.size());
    std::copy_n(value.begin(), bytes, Engine.PreviewBuffer.begin());
    Engine.PreviewLength += bytes;
}

// Reads cluster by cluster up to the entry's size; holes add nothing.
void ReadRunsToPreviewBuffer(const CatalogueItem& entry, const std::vector<MftExtent>& runs) {
    const std::uint64_t clusterBytes = Engine.VolumeParams.ClusterBytes;
    for (const MftExtent& run : runs) {
        for (std::uint32_t i = 0; run.StartCluster != 0 && i < run.Clusters; ++i) {
            const Bytes place = Bytes(Engine.PreviewBuffer)
                                    .subspan(static_cast<std::size_t>(Engine.PreviewLength),
                                             static_cast<std::size_t>(clusterBytes));
            ReadSectors(place, SectorOfCluster(run.StartCluster + i));
            Engine.PreviewLength = std::min(Engine.PreviewLength + clusterBytes, entry.Size);
            if (Engine.PreviewLength == entry.Size) {
                return;
            }
        }
    }
}

// The first data attribute, named or not.
void TakeData(const CatalogueItem& entry, ConstBytes record, const Attribute& data) {
    if (data.NonResident() == 0) {
        if (!data.Named()) {
            CopyValue(data.Value());
        }
    } else if (data.Flags() == kFlagsCompressed) {
        Host().MessageBox(CoreText("Core", "Preview not available"), CoreText("Core", "Compressed data"),
                          BoxIcon::Warning);
    } else {
        std::vector<MftExtent> runs;
        DecodeRunList(record, data.RunListStart(), runs);
        ReadRunsToPreviewBuffer(entry, runs);
    }
}

void FillPreviewBuffer(const CatalogueItem& entry) {
    std::vector<std::uint8_t> record(Engine.VolumeParams.FileRecordBytes);
    if (!ReadFileRecord(record, entry.RecordSector)) {
        return;
    }
    for (AttributeWalk walk(record); walk.Valid(); walk.Next()) {
        const Attribute attribute = walk.Current();
        if (attribute.Type() == kTypeEnd) {
            break;
        }
        if (attribute.Type() == kTypeData) {
            TakeData(entry, record, attribute);
            break;
        }
    }
}

} // namespace

bool LoadPreviewBuffer(const CatalogueItem& entry) try {
    const std::uint64_t clusterBytes = Engine.VolumeParams.ClusterBytes;
    if (entry.Size == 0 || entry.Size > kMaxPreviewBytes || clusterBytes == 0 ||
        clusterBytes > kMaxPreviewCluster) {
        return false;
    }
    Engine.PreviewLength = 0;
    Engine.PreviewBuffer.assign(static_cast<std::size_t>((entry.Size / clusterBytes + 1) * clusterBytes), 0);
    FillPreviewBuffer(entry);
    return true;
} catch (const std::bad_alloc&) {
    Engine.PreviewBuffer.clear();
    return false;
}

} // namespace thntfs
