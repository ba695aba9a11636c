#pragma once

#include "engine/LittleEndian.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace thntfs::test {

using ByteVector = std::vector<std::uint8_t>;

/// One run to be encoded, in clusters. `Start` is absolute; a run without one is sparse.
struct Run {
    std::uint64_t Clusters = 0;
    std::optional<std::uint64_t> Start;
};

/// Run list of the runs, each offset stored relative to the start before it, with the closing zero byte.
ByteVector EncodeRuns(const std::vector<Run>& runs);

/// Next multiple of 8.
constexpr std::size_t RoundUp8(std::size_t value) { return (value + 7) / 8 * 8; }

/// Puts the update sequence protection on a block: `checkWord` at `arrayOffset`, followed by the saved last
/// words of the sectors, and the check word in their places. `stride` is the sector size in bytes.
void ProtectBlock(Bytes block, std::size_t arrayOffset, std::size_t stride, std::uint16_t checkWord);

/// A number put over what a builder has laid out.
struct PokedBytes {
    std::size_t Offset = 0;
    std::size_t Width = 0;
    std::uint64_t Value = 0;
};

/// Puts them in their order.
void ApplyPokes(Bytes bytes, const std::vector<PokedBytes>& pokes);

/// Makes room for `length` more bytes at the end and copies them there.
void AppendBytes(ByteVector& bytes, ConstBytes more);

/// Appends the UTF-16 units of a text, little-endian.
void AppendText(ByteVector& bytes, std::u16string_view text);

/// Bytes of a narrow text.
ByteVector BytesOf(std::string_view text);

/// `length` bytes that look random and depend on `seed` alone.
ByteVector PatternBytes(std::size_t length, std::uint64_t seed = 1);

/// A file reference: record number in the low 48 bits, sequence number above.
constexpr std::uint64_t FileReference(std::uint64_t number, std::uint16_t sequence = 1) {
    return number | (static_cast<std::uint64_t>(sequence) << 48);
}

/// File time (100 ns units since 1601) of a calendar day at 00:00 UTC.
std::uint64_t FileTimeOfDay(int year, unsigned month, unsigned day);

/// The four times of a file in the order in which NTFS stores them.
struct FileTimes {
    std::uint64_t Created = 0;
    std::uint64_t Modified = 0;
    std::uint64_t Changed = 0;
    std::uint64_t Accessed = 0;
};

/// Four equal times, as metafiles have them. The default is 2024-02-29.
FileTimes EqualTimes(std::uint64_t time = FileTimeOfDay(2024, 2, 29));

} // namespace thntfs::test
