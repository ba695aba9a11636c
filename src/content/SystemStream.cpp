#include "content/SystemStream.h"

#include "engine/LittleEndian.h"

#include <algorithm>
#include <utility>

#ifdef THNTFS_WIMLIB
#include <wimlib.h>
#endif

namespace thntfs {

namespace {

constexpr std::size_t kTableWindow = std::size_t{64} << 10U;
constexpr std::size_t kDataWindow = std::size_t{512} << 10U;
constexpr std::uint64_t kWideEntriesFrom = std::uint64_t{1} << 32U;

std::size_t ChunkBytesOf(SystemFormat format) {
    switch (format) {
    case SystemFormat::Xpress4K:
        return std::size_t{4} << 10U;
    case SystemFormat::Xpress8K:
        return std::size_t{8} << 10U;
    case SystemFormat::Xpress16K:
        return std::size_t{16} << 10U;
    case SystemFormat::Lzx32K:
        break;
    }
    return std::size_t{32} << 10U;
}

std::uint64_t ChunkCount(std::uint64_t size, std::size_t chunkBytes) {
    return size / chunkBytes + (size % chunkBytes != 0 ? 1 : 0);
}

std::size_t EntryBytes(std::uint64_t size) { return size < kWideEntriesFrom ? 4 : 8; }

} // namespace

#ifdef THNTFS_WIMLIB

bool CanReadSystemFormats() { return true; }

class SystemStream::Decoder {
public:
    Decoder(SystemFormat format, std::size_t chunkBytes) {
        wimlib_create_decompressor(format == SystemFormat::Lzx32K ? WIMLIB_COMPRESSION_TYPE_LZX
                                                                  : WIMLIB_COMPRESSION_TYPE_XPRESS,
                                   chunkBytes, &handle_);
    }
    ~Decoder() { wimlib_free_decompressor(handle_); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    bool Decode(ConstBytes stored, Bytes plain) {
        return handle_ != nullptr &&
               wimlib_decompress(stored.data(), stored.size(), plain.data(), plain.size(), handle_) == 0;
    }

private:
    wimlib_decompressor* handle_ = nullptr;
};

#else

bool CanReadSystemFormats() { return false; }

class SystemStream::Decoder {
public:
    Decoder(SystemFormat /*format*/, std::size_t /*chunkBytes*/) {}

    static bool Decode(ConstBytes /*stored*/, Bytes /*plain*/) { return false; }
};

#endif

SystemStream::SystemStream(std::uint64_t size, SystemFormat format, std::unique_ptr<ExactStream> stored)
    : ExactStream(size)
    , stored_(std::move(stored))
    , decoder_(std::make_unique<Decoder>(format, ChunkBytesOf(format)))
    , chunkBytes_(ChunkBytesOf(format))
    , chunks_(ChunkCount(size, chunkBytes_))
    , entryBytes_(EntryBytes(size)) {
    Doubtful = stored_->StreamDoubts();
}

SystemStream::~SystemStream() = default;

bool SystemStream::Fits(std::uint64_t size, SystemFormat format, const ExactStream& stored) {
    const std::uint64_t chunks = ChunkCount(size, ChunkBytesOf(format));
    return chunks == 0 || (chunks - 1) * (EntryBytes(size) + 1) < stored.AllocatedBytes();
}

void SystemStream::Fill(std::uint64_t offset, Bytes buffer, std::size_t wanted, MissingData& missing) {
    while (wanted != 0) {
        const std::uint64_t chunk = offset / chunkBytes_;
        const std::size_t within = offset % chunkBytes_;
        LoadChunk(chunk, missing);
        const std::size_t bytes = std::min(wanted, plain_.size() - within);
        std::copy_n(plain_.begin() + static_cast<std::ptrdiff_t>(within), bytes, buffer.begin());
        offset += bytes;
        wanted -= bytes;
        buffer = buffer.subspan(bytes);
    }
    Doubtful.Add(stored_->StreamDoubts());
}

// Bytes of the stored stream; fewer where it ends before.
ConstBytes SystemStream::Stored(Window& window, std::uint64_t offset, std::size_t length,
                                MissingData& missing) {
    if (offset < window.Start || offset + length > window.Start + window.Length) {
        window.Start = offset;
        window.Length = stored_->Read(offset, window.Buffer, missing);
    }
    return Part(ConstBytes(window.Buffer).first(window.Length), offset - window.Start, length);
}

// Counted from the table's end.
std::uint64_t SystemStream::ChunkStart(std::uint64_t chunk, MissingData& missing) {
    if (chunk == 0) {
        return 0;
    }
    table_.Buffer.resize(kTableWindow);
    const ConstBytes entry = Stored(table_, (chunk - 1) * entryBytes_, entryBytes_, missing);
    return entryBytes_ == 4 ? U32At(entry, 0) : U64At(entry, 0);
}

SystemStream::Place SystemStream::PlaceOf(std::uint64_t chunk, MissingData& missing) {
    const std::uint64_t tableBytes = (chunks_ - 1) * entryBytes_;
    const std::uint64_t room = stored_->Size() - std::min(stored_->Size(), tableBytes);
    const std::uint64_t start = ChunkStart(chunk, missing);
    const std::uint64_t end = chunk + 1 == chunks_ ? room : ChunkStart(chunk + 1, missing);
    return start < end && end <= room ? Place{tableBytes + start, tableBytes + end} : Place{};
}

void SystemStream::LoadChunk(std::uint64_t chunk, MissingData& missing) {
    if (chunk == chunk_) {
        return;
    }
    chunk_ = chunk;
    plain_.resize(std::min<std::uint64_t>(chunkBytes_, Size() - chunk * chunkBytes_));
    const Place place = PlaceOf(chunk, missing);
    const std::uint64_t length = place.End - place.Start;
    bool sound = length != 0 && length <= plain_.size();
    if (sound) {
        data_.Buffer.resize(kDataWindow);
        const ConstBytes stored = Stored(data_, place.Start, static_cast<std::size_t>(length), missing);
        if (length == plain_.size()) {
            std::copy(stored.begin(), stored.end(), plain_.begin());
        } else {
            sound = decoder_->Decode(stored, plain_);
        }
    }
    if (!sound) {
        std::fill(plain_.begin(), plain_.end(), std::uint8_t{0});
        Doubtful.Add(Doubt::DataDamaged);
    }
}

} // namespace thntfs
