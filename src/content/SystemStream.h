#pragma once

#include "content/ExactStream.h"

#include <cstddef>
#include <memory>

namespace thntfs {

/// How the system has compressed a file, as the reparse point tells.
enum class SystemFormat : std::uint8_t { Xpress4K = 0, Lzx32K = 1, Xpress8K = 2, Xpress16K = 3 };

/// False where this build knows none of them, for want of a library.
bool CanReadSystemFormats();

/// A file that the system has compressed, chunk by chunk, into a stream of its own: a table of where the
/// second and each further chunk begins, counted from the table's end, and then the chunks. The entries have
/// 4 bytes, of a file of 4 GiB or more 8. A chunk that compression didn't make smaller is stored as it is.
class SystemStream : public ExactStream {
public:
    SystemStream(std::uint64_t size, SystemFormat format, std::unique_ptr<ExactStream> stored);
    ~SystemStream() override;

    /// False where the stored stream is too small to hold as many chunks.
    [[nodiscard]] static bool Fits(std::uint64_t size, SystemFormat format, const ExactStream& stored);

    [[nodiscard]] std::uint64_t BytesBehindEnd() const override { return stored_->BytesBehindEnd(); }
    [[nodiscard]] std::uint64_t AllocatedBytes() const override { return stored_->AllocatedBytes(); }
    [[nodiscard]] std::uint64_t UnitBytes() const override { return chunkBytes_; }

protected:
    void Fill(std::uint64_t offset, Bytes buffer, std::size_t wanted, MissingData& missing) override;

private:
    /// A stretch of the stored stream that is at hand.
    struct Window {
        std::vector<std::uint8_t> Buffer;
        std::uint64_t Start = 0;
        std::size_t Length = 0;
    };
    /// Where a chunk lies in the stored stream.
    struct Place {
        std::uint64_t Start = 0;
        std::uint64_t End = 0;
    };
    class Decoder;

    ConstBytes Stored(Window& window, std::uint64_t offset, std::size_t length, MissingData& missing);
    std::uint64_t ChunkStart(std::uint64_t chunk, MissingData& missing);
    Place PlaceOf(std::uint64_t chunk, MissingData& missing);
    void LoadChunk(std::uint64_t chunk, MissingData& missing);

    std::unique_ptr<ExactStream> stored_;
    std::unique_ptr<Decoder> decoder_;
    std::size_t chunkBytes_;
    std::uint64_t chunks_;
    std::size_t entryBytes_;
    Window table_;
    Window data_;
    std::uint64_t chunk_ = ~std::uint64_t{0}; ///< that plain_ holds
    std::vector<std::uint8_t> plain_;
};

} // namespace thntfs
