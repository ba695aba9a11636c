#include "images/VhdxLog.h"

#include "images/StoredNumber.h"
#include "platform/media/Medium.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace thntfs {

namespace {

constexpr std::size_t kVhdxHeaderBytes = 4096;
constexpr std::uint64_t kVhdxHeaderOffsets[] = {0x10000, 0x20000};
constexpr std::size_t kHeaderSumOffset = 4;
constexpr std::size_t kLogGuidBytes = 16;
constexpr std::uint64_t kLogStep = 4096; // an entry begins at a multiple of it
constexpr std::uint64_t kMostLogBytes = std::uint64_t{256} << 20U;

using LogGuid = std::array<std::uint8_t, kLogGuidBytes>;
using VhdxSector = std::array<std::uint8_t, kVhdxHeaderBytes>;

struct VhdxHeader {
    std::uint64_t Sequence = 0;
    LogGuid Log{};
    std::uint32_t LogBytes = 0;
    std::uint64_t LogOffset = 0;
};

// CRC-32C, its own field taken as zeros.
std::uint32_t SumOf(const VhdxSector& header) {
    constexpr std::uint32_t kPolynomial = 0x82F63B78;
    std::uint32_t sum = ~0U;
    for (std::size_t i = 0; i < header.size(); ++i) {
        sum ^= i >= kHeaderSumOffset && i < kHeaderSumOffset + sizeof(sum) ? 0U : header[i];
        for (unsigned bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1U) ^ ((sum & 1U) != 0 ? kPolynomial : 0U);
        }
    }
    return ~sum;
}

template <typename Buffer>
bool BeginsWith(const Buffer& bytes, std::string_view word) {
    return std::equal(word.begin(), word.end(), bytes.begin());
}

std::optional<VhdxHeader> HeaderAt(Medium& file, std::uint64_t offset) {
    constexpr std::size_t kLogGuidOffset = 48;
    VhdxSector bytes{};
    if (file.ReadAt(offset, bytes) != kErrorNone || !BeginsWith(bytes, "head") ||
        LittleNumberAt<std::uint32_t>(bytes, kHeaderSumOffset) != SumOf(bytes)) {
        return std::nullopt;
    }
    VhdxHeader header;
    header.Sequence = LittleNumberAt<std::uint64_t>(bytes, 8);
    std::copy_n(bytes.begin() + kLogGuidOffset, kLogGuidBytes, header.Log.begin());
    header.LogBytes = LittleNumberAt<std::uint32_t>(bytes, 68);
    header.LogOffset = LittleNumberAt<std::uint64_t>(bytes, 72);
    return header;
}

// The one with the higher number counts.
std::optional<VhdxHeader> ActiveHeader(Medium& file) {
    std::optional<VhdxHeader> active;
    for (const std::uint64_t offset : kVhdxHeaderOffsets) {
        const auto header = HeaderAt(file, offset);
        if (header && (!active || header->Sequence > active->Sequence)) {
            active = header;
        }
    }
    return active;
}

bool HasEntry(Medium& file, const VhdxHeader& header) {
    constexpr std::size_t kEntryGuidOffset = 32;
    for (std::uint64_t at = 0; at < header.LogBytes; at += kLogStep) {
        std::array<std::uint8_t, kEntryGuidOffset + kLogGuidBytes> entry{};
        if (file.ReadAt(header.LogOffset + at, entry) != kErrorNone) {
            return true;
        }
        if (BeginsWith(entry, "loge") &&
            std::equal(header.Log.begin(), header.Log.end(), entry.begin() + kEntryGuidOffset)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool HasVhdxLogPending(Medium& file) {
    const auto header = ActiveHeader(file);
    if (!header || header->Log == LogGuid{}) {
        return false;
    }
    const bool isInFile = header->LogOffset < file.SizeBytes() &&
                          header->LogBytes <= file.SizeBytes() - header->LogOffset &&
                          header->LogBytes <= kMostLogBytes;
    return !isInFile || HasEntry(file, *header);
}

} // namespace thntfs
