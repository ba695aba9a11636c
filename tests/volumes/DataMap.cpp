#include "DataMap.h"

#include "engine/LittleEndian.h"
#include "platform/system/Text.h"
#include "support/Sha256.h"

#include <algorithm>
#include <fstream>

namespace thntfs::test {

namespace {

constexpr std::size_t kStride = 512; // of the protection, whatever the sector size
constexpr std::uint64_t kHashedBytes = 64U << 20U;
constexpr std::size_t kChunkBytes = 4096;

using ByteVector = std::vector<std::uint8_t>;

/// A part of the file: bytes that came out, or a hole.
struct Piece {
    std::uint64_t Bytes = 0;
    bool Hole = false;
};

ByteVector ReadImage(const PackedImage& image, std::uint64_t offset, std::uint64_t bytes) {
    ByteVector data(static_cast<std::size_t>(bytes));
    std::ifstream file(image.Path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(offset));
    file.read(reinterpret_cast<char*>(data.data()), static_cast<std::streamsize>(data.size()));
    return data;
}

void UndoProtection(ByteVector& record) {
    const std::size_t array = U16At(record, 4);
    for (std::size_t i = 1; i < U16At(record, 6) && i * kStride <= record.size(); ++i) {
        record[i * kStride - 2] = U8At(record, array + 2 * i);
        record[i * kStride - 1] = U8At(record, array + 2 * i + 1);
    }
}

ByteVector ReadRecord(const PackedImage& image, const LayoutRow& layout, std::uint64_t offset) {
    ByteVector record = ReadImage(image, offset, layout.RecordBytes);
    UndoProtection(record);
    return record;
}

std::vector<std::size_t> AttributesOf(ConstBytes record) {
    std::vector<std::size_t> found;
    std::size_t at = U16At(record, 20);
    while (at + 16 <= record.size() && U32At(record, at) != 0xFFFFFFFF && U32At(record, at + 4) >= 16) {
        found.push_back(at);
        at += U32At(record, at + 4);
    }
    return found;
}

std::int64_t SignedAt(ConstBytes bytes, std::size_t at, std::size_t width) {
    std::uint64_t value = (U8At(bytes, at + width - 1) & 0x80U) != 0 ? ~std::uint64_t{0} : 0;
    for (std::size_t i = width; i > 0; --i) {
        value = value << 8 | U8At(bytes, at + i - 1);
    }
    return static_cast<std::int64_t>(value);
}

std::vector<DataMap::Run> RunsAt(ConstBytes record, std::size_t at) {
    std::vector<DataMap::Run> runs;
    std::int64_t cluster = 0;
    while (const std::uint8_t head = U8At(record, at++)) {
        const std::size_t lengthBytes = head & 15U;
        const std::size_t startBytes = head >> 4U;
        DataMap::Run run;
        for (std::size_t i = lengthBytes; i > 0; --i) {
            run.Clusters = run.Clusters << 8 | U8At(record, at + i - 1);
        }
        at += lengthBytes;
        if (startBytes != 0) {
            cluster += SignedAt(record, at, startBytes);
            run.Start = static_cast<std::uint64_t>(cluster);
        }
        at += startBytes;
        runs.push_back(run);
    }
    return runs;
}

// How many bytes a unit's compressed chunks give. Each gives 4096, and a chunk of four bytes or an empty
// header ends the unit.
std::uint64_t BytesOfChunks(ConstBytes raw, std::uint64_t limit) {
    std::uint64_t out = 0;
    std::size_t at = 0;
    while (at + 2 <= raw.size() && out < limit) {
        const std::size_t length = U16At(raw, at) & 0x0FFFU;
        if (length == 0 || length == 3) {
            break;
        }
        at += length + 3;
        out += kChunkBytes;
    }
    return std::min(out, limit);
}

/// Cuts the runs of a compressed file into its units.
class UnitCutter {
public:
    UnitCutter(const PackedImage& image, const LayoutRow& layout, const DataMap& map)
        : image_(image)
        , layout_(layout)
        , unit_(map.UnitClusters) {}

    void Add(DataMap::Run run) {
        while (run.Clusters > 0) {
            const std::uint64_t taken = std::min(run.Clusters, unit_ - filled_);
            if (run.Start) {
                const ByteVector more =
                    ReadImage(image_, layout_.PlaceOf(*run.Start), taken * layout_.ClusterBytes());
                raw_.insert(raw_.end(), more.begin(), more.end());
                *run.Start += taken;
            }
            run.Clusters -= taken;
            filled_ += taken;
            if (filled_ == unit_) {
                Close();
            }
        }
    }

    std::vector<Piece> Pieces;

private:
    void Close() {
        const std::uint64_t whole = unit_ * layout_.ClusterBytes();
        const std::uint64_t out = raw_.size() == whole ? whole : BytesOfChunks(raw_, whole);
        Pieces.push_back({out, false});
        Pieces.push_back({whole - out, true});
        raw_.clear();
        filled_ = 0;
    }

    const PackedImage& image_;
    const LayoutRow& layout_;
    std::uint64_t unit_;
    std::uint64_t filled_ = 0;
    ByteVector raw_;
};

std::vector<Piece> PiecesOf(const DataMap& map, std::uint64_t size, const PackedImage& image,
                            const LayoutRow& layout) {
    if (map.Compressed) {
        UnitCutter cutter(image, layout, map);
        std::for_each(map.Runs.begin(), map.Runs.end(), [&](const auto& run) { cutter.Add(run); });
        return cutter.Pieces;
    }
    std::vector<Piece> pieces;
    std::uint64_t left = size;
    for (const DataMap::Run& run : map.Runs) {
        const std::uint64_t bytes = run.Clusters * layout.ClusterBytes();
        pieces.push_back({run.Start ? std::min(bytes, left) : bytes, !run.Start});
        left -= run.Start ? pieces.back().Bytes : 0;
    }
    return pieces;
}

// The bytes of a table that lies in pieces, and the places in it where a piece ends.
ByteVector JoinRuns(const DataMap& map, const PackedImage& image, const LayoutRow& layout,
                    std::vector<std::size_t>& ends) {
    ByteVector whole;
    for (const DataMap::Run& run : map.Runs) {
        const ByteVector piece =
            ReadImage(image, layout.PlaceOf(run.Start.value_or(0)), run.Clusters * layout.ClusterBytes());
        whole.insert(whole.end(), piece.begin(), piece.end());
        ends.push_back(whole.size());
    }
    return whole;
}

void AddNames(ConstBytes record, std::set<std::string>& names) {
    for (const std::size_t at : AttributesOf(record)) {
        if (U32At(record, at) == 0x30) {
            const std::size_t value = at + U16At(record, at + 20);
            std::u16string name;
            for (std::size_t i = 0; i < U8At(record, value + 64); ++i) {
                name += static_cast<char16_t>(U16At(record, value + 66 + 2 * i));
            }
            names.insert(NarrowText(name));
        }
    }
}

} // namespace

DataMap ReadDataMap(const PackedImage& image, const LayoutRow& layout, std::uint64_t recordSector) {
    const ByteVector record = ReadRecord(image, layout, recordSector * layout.SectorSize);
    DataMap map;
    for (const std::size_t at : AttributesOf(record)) {
        if (U32At(record, at) == 0x20) {
            return {};
        }
        if (U32At(record, at) != 0x80 || U8At(record, at + 9) != 0) {
            continue;
        }
        map.Complete = true;
        if (U8At(record, at + 8) != 0) {
            map.Compressed = (U16At(record, at + 12) & 0xFFU) != 0;
            map.UnitClusters = std::uint64_t{1} << U16At(record, at + 34);
            map.Runs = RunsAt(record, at + U16At(record, at + 32));
        }
    }
    return map;
}

std::string HashWithHoles(ConstBytes saved, const DataMap& map, std::uint64_t size, const PackedImage& image,
                          const LayoutRow& layout) {
    ByteVector whole;
    std::size_t used = 0;
    for (const Piece& piece : PiecesOf(map, size, image, layout)) {
        if (piece.Hole && size <= kHashedBytes) {
            whole.resize(whole.size() + static_cast<std::size_t>(piece.Bytes));
        } else if (!piece.Hole) {
            const std::size_t left = saved.size() - used; // a file's last chunk may give less than others
            const ConstBytes part =
                saved.subspan(used, std::min(left, static_cast<std::size_t>(piece.Bytes)));
            whole.insert(whole.end(), part.begin(), part.end());
            used += part.size();
        }
    }
    if (used != saved.size()) {
        return {};
    }
    if (size > kHashedBytes) {
        return "too long";
    }
    whole.resize(static_cast<std::size_t>(size));
    return Sha256Of(whole);
}

std::set<std::string> NamesInSplitRecords(const PackedImage& image, const LayoutRow& layout) {
    const std::uint64_t tableSector =
        layout.StartSector + layout.MftCluster * layout.ClusterBytes() / layout.SectorSize;
    std::vector<std::size_t> ends;
    const ByteVector table = JoinRuns(ReadDataMap(image, layout, tableSector), image, layout, ends);
    std::set<std::string> names;
    for (const std::size_t end : ends) {
        const std::size_t start = end / layout.RecordBytes * layout.RecordBytes;
        if (start != end && start + layout.RecordBytes <= table.size()) {
            const auto first = table.begin() + static_cast<std::ptrdiff_t>(start);
            ByteVector record(first, first + static_cast<std::ptrdiff_t>(layout.RecordBytes));
            UndoProtection(record);
            AddNames(record, names);
        }
    }
    return names;
}

bool TableIsKnown(const PackedImage& image, const LayoutRow& layout) {
    const ByteVector record = ReadRecord(image, layout, layout.PlaceOf(layout.MftCluster));
    const std::vector<std::size_t> attributes = AttributesOf(record);
    return std::any_of(attributes.begin(), attributes.end(),
                       [&](std::size_t at) { return U32At(record, at) == 0x30; });
}

} // namespace thntfs::test
