#include "content/ZipTail.h"

#include "engine/LittleEndian.h"

#include <algorithm>
#include <limits>

namespace thntfs {

namespace {

constexpr std::uint32_t kDirectoryRecord = 0x02014B50;
constexpr std::uint32_t kBigEnd = 0x06064B50;
constexpr std::size_t kRecordHead = 46;
constexpr std::size_t kBigEndBytes = 56;
constexpr std::size_t kLocatorBytes = 20;

std::size_t RecordBytes(ConstBytes record) {
    return kRecordHead + U16At(record, 28) + U16At(record, 30) + U16At(record, 32);
}

bool IsDirectoryRecord(ConstBytes rest) {
    return rest.size() >= kRecordHead && U32At(rest, 0) == kDirectoryRecord &&
           RecordBytes(rest) <= rest.size();
}

template <typename Number>
void PutCapped(Bytes place, std::uint64_t offset, std::uint64_t value) {
    constexpr Number kMost = std::numeric_limits<Number>::max();
    PutNumber(place, offset, static_cast<Number>(std::min<std::uint64_t>(value, kMost)));
}

/// What the closing records tell of the directory.
struct Directory {
    std::uint64_t Entries = 0;
    std::uint64_t Bytes = 0;
    std::uint64_t Offset = 0;
};

void PutBigEnd(Bytes end, const Directory& directory) {
    PutNumber(end, 24, directory.Entries);
    PutNumber(end, 32, directory.Entries);
    PutNumber(end, 40, directory.Bytes);
    PutNumber(end, 48, directory.Offset);
    PutNumber(end, kBigEndBytes + 8, directory.Offset + directory.Bytes);
}

void PutEnd(Bytes end, const Directory& directory) {
    PutCapped<std::uint16_t>(end, 8, directory.Entries);
    PutCapped<std::uint16_t>(end, 10, directory.Entries);
    PutCapped<std::uint32_t>(end, 12, directory.Bytes);
    PutCapped<std::uint32_t>(end, 16, directory.Offset);
}

} // namespace

std::vector<std::uint8_t> ZipTailWithout(ConstBytes tail, const std::vector<std::uint64_t>& dropped,
                                         std::uint64_t offset) {
    std::vector<std::uint8_t> kept;
    Directory directory{0, 0, offset};
    ConstBytes rest = tail;
    for (std::uint64_t number = 0; IsDirectoryRecord(rest); ++number) {
        const ConstBytes record = rest.first(RecordBytes(rest));
        if (!std::binary_search(dropped.begin(), dropped.end(), number)) {
            kept.insert(kept.end(), record.begin(), record.end());
            ++directory.Entries;
        }
        rest = rest.subspan(record.size());
    }
    directory.Bytes = kept.size();
    kept.insert(kept.end(), rest.begin(), rest.end());
    Bytes end = Bytes(kept).subspan(directory.Bytes);
    if (U32At(end, 0) == kBigEnd) {
        PutBigEnd(end, directory);
        end = end.subspan(kBigEndBytes + kLocatorBytes);
    }
    PutEnd(end, directory);
    return kept;
}

} // namespace thntfs
