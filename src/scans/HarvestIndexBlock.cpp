#include "engine/DecodeRecord.h"
#include "platform/system/Dates.h"
#include "scans/RecordCataloguing.h"
#include "scans/TurboScan.h"

namespace thntfs {

namespace {

constexpr std::uint64_t kHeaderBytes = 24; // offsets in the header count from here
constexpr std::uint64_t kKeyAt = 16;
constexpr std::uint32_t kKeyIsFolder = 0x10000000;
constexpr std::uint8_t kNamespaceDos = 2;
constexpr std::uint16_t kMinEntryWithKey = 67;
constexpr std::uint8_t kLastEntry = 2;

// The attribute bits of a key, with the two bits of the catalogue set: a folder that an index lists counts as
// live.
std::uint16_t FlagsOfKey(std::uint32_t attributeBits) {
    return static_cast<std::uint16_t>((attributeBits | 6U) << 2U);
}

void HarvestKey(ConstBytes block, std::uint64_t entryAt, std::uint32_t& nextEntryId) {
    const std::uint64_t key = entryAt + kKeyAt;
    const std::uint32_t attributeBits = U32At(block, key + 56);
    if ((attributeBits & kKeyIsFolder) == 0 || U8At(block, key + 65) == kNamespaceDos) {
        return;
    }
    DecodedEntry entry;
    TakeName(block, key, entry);
    entry.RecordNumber = U32At(block, entryAt);
    entry.CreatedDate = DosDateOfFileTime(U64At(block, key + 8));
    entry.AccessedDate = DosDateOfFileTime(U64At(block, key + 32));
    entry.Flags = FlagsOfKey(attributeBits);
    if (entry.RecordNumber != entry.ParentNumber && entry.Name() != u".") {
        CatalogueFolder(entry, nextEntryId);
    }
}

} // namespace

int HarvestIndexBlock(ConstBytes block, std::uint32_t& nextEntryId) {
    const std::uint64_t end = std::uint64_t{U32At(block, 28)} + kHeaderBytes;
    for (std::uint64_t at = std::uint64_t{U32At(block, 24)} + kHeaderBytes; at < end && at < block.size();) {
        const std::uint16_t length = U16At(block, at + 8);
        if (length < kMinEntryWithKey || U8At(block, at + 12) == kLastEntry) {
            break;
        }
        HarvestKey(block, at, nextEntryId);
        at += length;
    }
    return 1;
}

} // namespace thntfs
