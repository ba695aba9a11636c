// The exact reader: the records of a small volume, with all that they lead to, read at many offsets. What is
// read piece by piece must be what is read at once, and what counts as a hole must be zeros.

#include "FuzzSupport.h"
#include "content/ExactFile.h"
#include "engine/FileRecord.h"
#include "engine/RecordTable.h"
#include "engine/SectorReader.h"

#include <algorithm>
#include <cstdlib>

using namespace thntfs;

namespace {

constexpr std::size_t kRecordBytes = 1024;
constexpr std::size_t kMaxRecords = 48;
constexpr std::size_t kMostRead = 200000;
constexpr unsigned kMaxEdges = 64;

std::vector<std::uint8_t> ReadAt(ExactStream& stream, std::uint64_t offset, std::size_t bytes) {
    std::vector<std::uint8_t> buffer(bytes);
    MissingData missing;
    const std::size_t got = stream.Read(offset, buffer, missing);
    if (got != std::min<std::uint64_t>(bytes, stream.Size() - std::min(stream.Size(), offset))) {
        std::abort();
    }
    buffer.resize(got);
    return buffer;
}

void ReadInPieces(ExactStream& stream) {
    const std::vector<std::uint8_t> whole = ReadAt(stream, 0, kMostRead);
    for (std::size_t at = 0, step = 1; at < whole.size(); at += step, step = step * 3 + 1) {
        const std::vector<std::uint8_t> piece = ReadAt(stream, at, step);
        if (!std::equal(piece.begin(),
                        piece.begin() + static_cast<std::ptrdiff_t>(std::min(step, whole.size() - at)),
                        whole.begin() + static_cast<std::ptrdiff_t>(at))) {
            std::abort();
        }
    }
}

void WalkEdges(ExactStream& stream) {
    std::uint64_t at = 0;
    for (unsigned edge = 0; at < stream.Size() && edge < kMaxEdges; ++edge) {
        const std::uint64_t data = stream.NextData(at);
        const std::vector<std::uint8_t> hole =
            ReadAt(stream, at, static_cast<std::size_t>(std::min<std::uint64_t>(data - at, 5000)));
        if (data < at || std::any_of(hole.begin(), hole.end(), [](std::uint8_t byte) { return byte != 0; })) {
            std::abort();
        }
        ReadAt(stream, data, 100);
        at = stream.NextHole(data);
        if (at < data || (data < stream.Size() && at == data)) {
            std::abort();
        }
    }
    ReadAt(stream, stream.Size() - std::min<std::uint64_t>(stream.Size(), 50), 100);
}

void ReadFile(const CatalogueItem& item) {
    ExactFile file;
    if (!file.Open(item)) {
        return;
    }
    for (const ExactName& name : file.Names()) {
        if (name.Name.size() > 255) {
            std::abort();
        }
    }
    for (const ExactStreamInfo& info : file.Streams()) {
        if (const auto stream = file.OpenStream(info.Name)) {
            ReadInPieces(*stream);
            WalkEdges(*stream);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ConstBytes input(data, size);
    fuzz::OpenPlainVolume(input);
    Engine.VolumeParams.VolumeSerial = size % 2; // whether its size counts
    try {
        VisitTableStretches([](const TableStretch&) { return true; });
        const std::size_t records = std::min(size / kRecordBytes, kMaxRecords);
        for (std::size_t i = 0; i < records; ++i) {
            CatalogueItem item;
            item.RecordSector = i * kRecordBytes / 512;
            item.RecordNumber = U32At(input, i * kRecordBytes + 44);
            item.Size = kRecordBytes;
            NoteFoundRecord(item.RecordNumber, item.RecordSector);
            ReadFile(item);
        }
    } catch (const CUserException&) {
    }
    ResetEngineState();
    return 0;
}
