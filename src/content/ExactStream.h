#pragma once

#include "content/ExactDoubts.h"
#include "content/MissingData.h"
#include "engine/RunMap.h"
#include "platform/system/Bytes.h"

#include <cstdint>
#include <vector>

namespace thntfs {

/// One stream of bytes of a file, as its records tell of it, to be read at any offset. It needs the medium
/// and the volume in work, not the file that it was opened from.
class ExactStream {
public:
    explicit ExactStream(std::uint64_t size)
        : size_(size) {}
    virtual ~ExactStream() = default;
    ExactStream(const ExactStream&) = delete;
    ExactStream& operator=(const ExactStream&) = delete;

    /// In bytes. It may be far more than the volume holds, where most of it is a hole.
    [[nodiscard]] std::uint64_t Size() const { return size_; }

    /// Reads bytes from an offset on, up to the buffer's size or the stream's end, and gives their number.
    /// Holes are zeros, and so is what can't be had: it is added to `missing`, or stands in StreamDoubts from
    /// then on. What lies in the buffer behind the bytes given is undefined: room for whole clusters there
    /// spares a read. ContentBuffer reads fast. Passes CUserException on.
    std::size_t Read(std::uint64_t offset, Bytes buffer, MissingData& missing);

    /// The first offset from one on at which data lies; Size where none does.
    [[nodiscard]] virtual std::uint64_t NextData(std::uint64_t offset) const { return offset; }
    /// The first offset from one on at which a hole lies, of zeros that nothing on the medium stands for; the
    /// stream's end counts as one.
    [[nodiscard]] virtual std::uint64_t NextHole(std::uint64_t /*offset*/) const { return Size(); }

    /// Bytes that lie behind the end of the volume or of the medium. They are holes here, so they aren't
    /// added by Read.
    [[nodiscard]] virtual std::uint64_t BytesBehindEnd() const { return 0; }

    /// Bytes of the medium that its data takes; compressed data takes fewer than it gives.
    [[nodiscard]] virtual std::uint64_t AllocatedBytes() const { return Size(); }

    /// Bytes that are decompressed together, so that they can be had together alone; 0 where each sector
    /// stands for itself. Units lie one behind the other from the stream's begin.
    [[nodiscard]] virtual std::uint64_t UnitBytes() const { return 0; }

    /// What is doubtful by what has been read so far; some of it is known from the start.
    [[nodiscard]] const Doubts& StreamDoubts() const { return Doubtful; }

protected:
    /// Reads `wanted` bytes, all of which lie in the stream; the buffer may have more room.
    virtual void Fill(std::uint64_t offset, Bytes buffer, std::size_t wanted, MissingData& missing) = 0;

    Doubts Doubtful;

private:
    std::uint64_t size_;
};

/// What the records tell of a stream, made out by ExactLayout.
struct StreamLayout {
    std::uint64_t Size = 0;
    std::uint64_t Initialised = 0;    ///< from here on it is zeros
    bool Resident = false;            ///< its bytes are Value
    std::vector<std::uint8_t> Value;  ///< of a resident stream
    RunMap Runs;                      ///< of one that isn't; within the volume
    std::uint32_t ClusterBytes = 0;   ///< of its runs
    std::uint32_t UnitClusters = 0;   ///< of a unit of compression; 0 where it isn't compressed
    std::uint64_t BytesBehindEnd = 0; ///< of its runs, in front of Size
    Doubts Doubtful;
};

} // namespace thntfs
