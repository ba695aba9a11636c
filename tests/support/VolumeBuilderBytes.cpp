#include "support/VolumeBuilderBytes.h"

#include <chrono>

namespace thntfs::test {

namespace {

std::size_t BytesOfSigned(std::int64_t value) {
    std::size_t bytes = 1;
    while (bytes < 8 && (value >> (bytes * 8 - 1)) != 0 && (value >> (bytes * 8 - 1)) != -1) {
        ++bytes;
    }
    return bytes;
}

void AppendNumber(ByteVector& bytes, std::uint64_t value, std::size_t width) {
    for (std::size_t index = 0; index < width; ++index) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (index * 8)));
    }
}

} // namespace

ByteVector EncodeRuns(const std::vector<Run>& runs) {
    ByteVector list;
    std::uint64_t before = 0;
    for (const Run& run : runs) {
        // A length whose top bit is set would read as negative in readers that take it as signed.
        const std::size_t lengthBytes = BytesOfSigned(static_cast<std::int64_t>(run.Clusters));
        const auto offset = static_cast<std::int64_t>(run.Start.value_or(before) - before);
        const std::size_t offsetBytes = run.Start ? BytesOfSigned(offset) : 0;
        list.push_back(static_cast<std::uint8_t>(lengthBytes | (offsetBytes << 4)));
        AppendNumber(list, run.Clusters, lengthBytes);
        AppendNumber(list, static_cast<std::uint64_t>(offset), offsetBytes);
        before = run.Start.value_or(before);
    }
    list.push_back(0);
    return list;
}

void ProtectBlock(Bytes block, std::size_t arrayOffset, std::size_t stride, std::uint16_t checkWord) {
    PutNumber(block, arrayOffset, checkWord);
    for (std::size_t end = stride, place = arrayOffset + 2; end <= block.size(); end += stride, place += 2) {
        PutNumber(block, place, U16At(block, end - 2));
        PutNumber(block, end - 2, checkWord);
    }
}

void ApplyPokes(Bytes bytes, const std::vector<PokedBytes>& pokes) {
    for (const PokedBytes& poke : pokes) {
        for (std::size_t index = 0; index < poke.Width; ++index) {
            bytes[poke.Offset + index] = static_cast<std::uint8_t>(poke.Value >> (index * 8));
        }
    }
}

void AppendBytes(ByteVector& bytes, ConstBytes more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

void AppendText(ByteVector& bytes, std::u16string_view text) {
    for (const char16_t unit : text) {
        AppendNumber(bytes, unit, 2);
    }
}

ByteVector BytesOf(std::string_view text) { return ByteVector(text.begin(), text.end()); }

ByteVector PatternBytes(std::size_t length, std::uint64_t seed) {
    ByteVector bytes(length);
    std::uint64_t state = seed * 0x9E3779B97F4A7C15 + 1;
    for (std::uint8_t& byte : bytes) {
        state = state * 6364136223846793005 + 1442695040888963407;
        byte = static_cast<std::uint8_t>(state >> 56);
    }
    return bytes;
}

std::uint64_t FileTimeOfDay(int year, unsigned month, unsigned day) {
    using namespace std::chrono;
    const auto days = sys_days(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day)) -
                      sys_days(std::chrono::year(1601) / std::chrono::month(1) / std::chrono::day(1));
    return static_cast<std::uint64_t>(days.count()) * 86400 * 10000000;
}

FileTimes EqualTimes(std::uint64_t time) { return {time, time, time, time}; }

} // namespace thntfs::test
