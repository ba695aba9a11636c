#include "content/StreamWriter.h"

#include "content/ContentDigest.h"
#include "content/ContentJob.h"
#include "content/ExactStream.h"
#include "engine/EngineState.h"
#include "engine/SectorReader.h"
#include "platform/files/File.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::size_t kWritePiece = 1U << 20U;
constexpr std::uint64_t kMaxHashedHoles = std::uint64_t{64} << 30U; // their zeros take a minute
constexpr std::uint64_t kPendingWrites = std::uint64_t{16} << 20U;

std::size_t RoomFor(std::uint64_t bytes) {
    return static_cast<std::size_t>(std::min<std::uint64_t>(bytes, kWritePiece));
}

bool HolesExceed(const ExactStream& stream, std::uint64_t bytes) {
    return stream.Size() > bytes && stream.Size() - DataBytes(stream, stream.Size()) > bytes;
}

// A size beyond the medium's that other things of the file are wrong with too is hardly its size: such a file
// ends with its data.
bool SizeIsTrue(const ExactStream& stream) {
    return stream.Size() <= MediumBytes() || (stream.StreamDoubts().None() && stream.BytesBehindEnd() == 0);
}

} // namespace

ContentOutcome StreamWriter::Write(ExactStream& stream, File& output, ContentDigest* digest) {
    digest_ = digest;
    buffer_.resize(kWritePiece);
    outcome_ = {};
    outcome_.Size = stream.Size();
    begun_ = 0;
    if (digest != nullptr && HolesExceed(stream, kMaxHashedHoles)) {
        digest->Leave();
    }
    try {
        Copy(stream, output);
    } catch (const CUserException&) {
        outcome_.End = ContentEnd::MediumFailed;
    }
    if (outcome_.End == ContentEnd::Reached && Engine.ScanRunFlag == 0) {
        outcome_.End = ContentEnd::Stopped;
    }
    outcome_.Missing.BytesBehindEnd += stream.BytesBehindEnd();
    outcome_.Doubtful = stream.StreamDoubts();
    return outcome_;
}

bool StreamWriter::MayGoOn() const { return outcome_.End == ContentEnd::Reached && !ContentStopped(); }

void StreamWriter::Copy(ExactStream& stream, File& output) {
    std::uint64_t end = 0; // of what was written
    while (outcome_.Written < stream.Size() && MayGoOn()) {
        const std::uint64_t data = std::min(stream.NextData(outcome_.Written), stream.Size());
        if (data == stream.Size() && !SizeIsTrue(stream)) {
            return;
        }
        Skip(data);
        if (data < stream.Size()) {
            end = std::clamp(stream.NextHole(outcome_.Written), outcome_.Written + 1, stream.Size());
            CopyData(stream, output, end);
        }
    }
    if (end < stream.Size() && MayGoOn()) {
        outcome_.WriteError = output.SetSize(stream.Size());
        outcome_.End = outcome_.WriteError == kErrorNone ? outcome_.End : ContentEnd::WriteFailed;
    }
}

void StreamWriter::CopyData(ExactStream& stream, File& output, std::uint64_t end) {
    while (outcome_.Written < end && MayGoOn()) {
        // At the stream's end there is room for the rest of its last cluster.
        const Bytes room =
            end < stream.Size() ? Bytes(buffer_).first(RoomFor(end - outcome_.Written)) : buffer_;
        const std::size_t got = stream.Read(outcome_.Written, room, outcome_.Missing);
        const ConstBytes piece = ConstBytes(room).first(got);
        outcome_.WriteError = output.WriteAt(outcome_.Written, piece);
        if (outcome_.WriteError != kErrorNone) {
            outcome_.End = ContentEnd::WriteFailed;
            return;
        }
        if (digest_ != nullptr) {
            digest_->Add(piece);
        }
        outcome_.Written += got;
        if (outcome_.Written - begun_ >= kPendingWrites) {
            output.StartSync(begun_, outcome_.Written - begun_);
            begun_ = outcome_.Written;
        }
        Engine.BytesWritten = outcome_.Written;
        ReportContentProgress(stream.Size());
    }
}

void StreamWriter::Skip(std::uint64_t to) {
    if (digest_ != nullptr) {
        digest_->AddHole(to - outcome_.Written);
    }
    outcome_.Written = to;
}

std::uint64_t WrittenSize(const ExactStream& stream) {
    if (SizeIsTrue(stream)) {
        return stream.Size();
    }
    std::uint64_t end = 0;
    for (std::uint64_t at = stream.NextData(0); at < stream.Size(); at = stream.NextData(end)) {
        end = std::clamp(stream.NextHole(at), at + 1, stream.Size());
    }
    return end;
}

std::uint64_t DataBytes(const ExactStream& stream, std::uint64_t enough) {
    std::uint64_t bytes = 0;
    for (std::uint64_t at = stream.NextData(0); at < stream.Size() && bytes <= enough;) {
        const std::uint64_t end = std::clamp(stream.NextHole(at), at + 1, stream.Size());
        bytes += end - at;
        at = stream.NextData(end);
    }
    return bytes;
}

} // namespace thntfs
