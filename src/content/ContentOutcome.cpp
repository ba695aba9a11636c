#include "content/ContentOutcome.h"

#include "content/ContentJob.h"
#include "content/EntryContent.h"
#include "content/ExactFile.h"
#include "engine/EngineState.h"
#include "engine/FileWrites.h"
#include "platform/files/ForwardingFile.h"

#include <functional>

namespace thntfs {

namespace {

constexpr std::uint64_t kPendingBytes = std::uint64_t{16} << 20U;

/// An output file that counts what goes into it, keeps the code of a failed write, and keeps the device busy
/// while a big file is written.
class CountingFile : public ForwardingFile {
public:
    explicit CountingFile(File& inner)
        : ForwardingFile(inner) {}

    ErrorCode Write(ConstBytes bytes) override {
        Failure = ForwardingFile::Write(bytes);
        if (Failure == kErrorNone) {
            Written += bytes.size();
        }
        if (Written - begun_ >= kPendingBytes) {
            StartSync(begun_, Written - begun_);
            begun_ = Written;
        }
        return Failure;
    }

    std::uint64_t Written = 0;
    ErrorCode Failure = kErrorNone;

private:
    std::uint64_t begun_ = 0; ///< up to here the bytes are on their way to the device
};

/// Puts out what a road gives, until something ends it.
using Road = std::function<bool(File& output, ContentOutcome& outcome)>;

ContentEnd RunToItsEnd(const Road& road, CountingFile& output, ContentOutcome& outcome) {
    try {
        if (!road(output, outcome)) {
            return ContentEnd::RecordDamaged;
        }
    } catch (const CUserException&) {
        return output.Failure != kErrorNone ? ContentEnd::WriteFailed : ContentEnd::MediumFailed;
    }
    return ContentEnd::Reached;
}

ContentOutcome TakeBy(const Road& road, File& output) {
    CountingFile counted(output);
    Engine.BytesWritten = 0;
    ContentOutcome outcome;
    outcome.End = RunToItsEnd(road, counted, outcome);
    if (outcome.End != ContentEnd::WriteFailed && outcome.End != ContentEnd::MediumFailed &&
        Engine.ScanRunFlag == 0) {
        outcome.End = ContentEnd::Stopped;
    }
    outcome.WriteError = counted.Failure;
    outcome.Written = counted.Written;
    return outcome;
}

// The last clusters of a file are read whole, so the buffer has room for them.
void WriteStream(ExactStream& stream, File& output, ContentOutcome& outcome) {
    const Bytes buffer = ContentBuffer();
    while (Engine.BytesWritten < stream.Size() && !ContentStopped()) {
        const std::size_t bytes = stream.Read(Engine.BytesWritten, buffer, outcome.Missing);
        Engine.BytesWritten += bytes;
        WriteCatalogue(output, buffer.first(bytes));
        ReportContentProgress(stream.Size());
    }
}

bool WriteExact(const CatalogueItem& entry, std::u16string_view name, File& output, ContentOutcome& outcome) {
    ExactFile file;
    if (!file.Open(entry)) {
        outcome.Size = entry.Size;
        return false;
    }
    const std::unique_ptr<ExactStream> stream = file.OpenStream(name);
    if (stream == nullptr) {
        return true;
    }
    outcome.Size = stream->Size();
    outcome.Missing.BytesBehindEnd = stream->BytesBehindEnd();
    WriteStream(*stream, output, outcome);
    outcome.Doubtful = stream->StreamDoubts();
    return true;
}

} // namespace

bool ContentOutcome::Whole() const {
    return End == ContentEnd::Reached && Written == Size && Missing.None() && Doubtful.None();
}

bool ContentOutcome::Kept() const {
    return End == ContentEnd::Reached || (End == ContentEnd::RecordDamaged && Written != 0);
}

std::vector<std::string> DamageReasons(const ContentOutcome& outcome) {
    std::vector<std::string> reasons;
    if (outcome.End == ContentEnd::RecordDamaged) {
        reasons.emplace_back("one of its file records is damaged");
    }
    const MissingData& missing = outcome.Missing;
    if (missing.SectorsUnread == 1) {
        reasons.push_back("sector " + std::to_string(missing.FirstSectorUnread) +
                          " could not be read and is zeros");
    } else if (missing.SectorsUnread != 0) {
        reasons.push_back(std::to_string(missing.SectorsUnread) + " sectors, the first of them " +
                          std::to_string(missing.FirstSectorUnread) + ", could not be read and are zeros");
    }
    if (missing.BytesBehindEnd != 0) {
        reasons.push_back(std::to_string(missing.BytesBehindEnd) +
                          " bytes lie behind the end of the medium and are zeros");
    }
    for (std::string& reason : outcome.Doubtful.Reasons()) {
        reasons.push_back(std::move(reason));
    }
    const std::string lengths = "it came out " + std::to_string(outcome.Written) +
                                " bytes long, and its size is " + std::to_string(outcome.Size);
    if (outcome.Written < outcome.Size) {
        reasons.push_back(lengths + "; holes and missing clusters are left out");
    } else if (outcome.Written > outcome.Size) {
        reasons.push_back(lengths + "; the rest of its last unit is kept");
    }
    return reasons;
}

ContentOutcome TakeContent(const CatalogueItem& entry, File& output) {
    return TakeBy(
        [&entry](File& counted, ContentOutcome& outcome) {
            outcome.Size = entry.Size;
            return ReadEntryContent(entry, counted, outcome.Missing);
        },
        output);
}

ContentOutcome TakeExactContent(const CatalogueItem& entry, File& output, std::u16string_view stream) {
    return TakeBy(
        [&](File& counted, ContentOutcome& outcome) { return WriteExact(entry, stream, counted, outcome); },
        output);
}

} // namespace thntfs
