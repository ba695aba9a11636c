#pragma once

#include "content/ContentOutcome.h"
#include "platform/system/ReadBuffer.h"

#include <cstdint>
#include <vector>

namespace thntfs {

class ContentDigest;
class ExactStream;

/// Writes streams into files of their own with their holes kept: what no data stands for isn't written.
class StreamWriter {
public:
    /// Puts a stream into an output file that nothing has been written to yet; `digest`, which may be null,
    /// takes the bytes too. What went wrong stands in the outcome, a failure of the medium after its box.
    ContentOutcome Write(ExactStream& stream, File& output, ContentDigest* digest);

private:
    void Copy(ExactStream& stream, File& output);
    void CopyData(ExactStream& stream, File& output, std::uint64_t end);
    void Skip(std::uint64_t to);
    [[nodiscard]] bool MayGoOn() const;

    ContentDigest* digest_ = nullptr;
    ReadBuffer buffer_;
    ContentOutcome outcome_;  ///< of the stream in hand; its Written is the offset reached
    std::uint64_t begun_ = 0; ///< up to here the bytes are on their way to the device
};

/// Where a stream ends once it is written: its size, or the end of its data where that size can't be true.
std::uint64_t WrittenSize(const ExactStream& stream);

/// Bytes of a stream that data stands for: the room that it needs where holes take none. At most `enough` and
/// a little more.
std::uint64_t DataBytes(const ExactStream& stream, std::uint64_t enough);

} // namespace thntfs
