#include "scans/VolumeBitmap.h"

#include "engine/AttributePieces.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/RecordTable.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint64_t kBitmapRecord = 6;
constexpr std::uint64_t kNameLengthInValue = 64;
constexpr std::uint64_t kNameInValue = 66;
constexpr std::size_t kMaxListedPieces = 4096;

bool HasBitmapName(ConstBytes record) {
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() <= kTypeFileName; walk.Next()) {
        if (walk.Current().Type() == kTypeFileName) {
            const std::uint64_t value = walk.Current().ValueStart();
            return UnitsAt(record, value + kNameInValue, U8At(record, value + kNameLengthInValue)) ==
                   u"$Bitmap";
        }
    }
    return false;
}

bool IsBitmapRecord(ConstBytes record) {
    return IsInUse(record) && BaseReference(record) == 0 && HasBitmapName(record);
}

/// Gathers the runs of the unnamed data, wherever a list says that its pieces are.
class BitmapPieces {
public:
    BitmapPieces(RunMap& runs, std::uint64_t& bytes)
        : runs_(runs)
        , bytes_(bytes) {}

    void TakeBase(ConstBytes record) {
        for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() <= kTypeData; walk.Next()) {
            if (walk.Current().Type() == kTypeAttributeList) {
                FollowList(record, walk.Current());
                return;
            }
            if (walk.Current().Type() == kTypeData && walk.Current().NameLength() == 0) {
                TakePiece(record, walk.Current());
            }
        }
    }

private:
    void FollowList(ConstBytes base, const Attribute& list) {
        bool whole = true;
        const std::vector<ListedPiece> pieces = ListedPieces(ReadListValue(base, list, whole), whole);
        const std::uint64_t own = kBitmapRecord | std::uint64_t{RecordSequence(base)} << 48U;
        std::vector<std::uint8_t> record(Engine.VolumeParams.FileRecordBytes);
        for (std::size_t i = 0; i < std::min(pieces.size(), kMaxListedPieces); ++i) {
            const ListedPiece& piece = pieces[i];
            if (piece.Type != kTypeData || !piece.Name.empty()) {
                continue;
            }
            if (NumberOf(piece.Reference) == kBitmapRecord) {
                TakeListed(base, piece);
            } else if (ReadTableRecord(NumberOf(piece.Reference), record) && BaseReference(record) == own) {
                TakeListed(record, piece);
            }
        }
    }

    void TakeListed(ConstBytes record, const ListedPiece& piece) {
        if (const auto attribute = FindListed(record, piece)) {
            TakePiece(record, *attribute);
        }
    }

    void TakePiece(ConstBytes record, const Attribute& data) {
        if (data.NonResident() == 0) {
            return;
        }
        runs_.Add(RunListOf(record, data), data.FirstCluster());
        if (data.FirstCluster() == 0) {
            bytes_ = std::min(data.RealBytes(), data.InitialisedBytes());
        }
    }

    RunMap& runs_;
    std::uint64_t& bytes_;
};

} // namespace

VolumeBitmap::VolumeBitmap() {
    std::vector<std::uint8_t> record(Engine.VolumeParams.FileRecordBytes);
    if (ReadTableRecord(kBitmapRecord, record, IsBitmapRecord)) {
        BitmapPieces(runs_, bytes_).TakeBase(record);
    }
}

bool VolumeBitmap::ReadPage(std::uint64_t page, std::uint64_t clusters, ClusterSet::Page& bits) const {
    constexpr std::uint64_t kPageBytes = sizeof(ClusterSet::Page);
    const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    const std::uint64_t wanted = (clusters + 7) / 8;
    const std::uint64_t offset = page * kPageBytes;
    if (sectorBytes == 0 || kPageBytes % sectorBytes != 0 || offset >= bytes_ || wanted > bytes_ - offset) {
        return false;
    }
    std::array<std::uint8_t, kPageBytes> bytes{};
    const std::uint64_t read = std::min(kPageBytes, (wanted + sectorBytes - 1) / sectorBytes * sectorBytes);
    const bool whole = ReadByRuns(runs_, offset, Bytes(bytes).first(static_cast<std::size_t>(read)));
    std::memcpy(bits.data(), bytes.data(), bytes.size());
    return whole;
}

} // namespace thntfs
