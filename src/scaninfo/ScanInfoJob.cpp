#include "scaninfo/ScanInfoJob.h"

#include "engine/AskForDisk.h"
#include "engine/ClusterSize.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "images/AnyMedium.h"
#include "platform/files/ReplacementFile.h"
#include "platform/media/Medium.h"
#include "platform/system/Text.h"

#include <exception>

namespace thntfs {

namespace {

constexpr const char* kUnknownError = "Unknown error";

std::string FailureText(const char* verb, const ScanInfoTexts& texts, ErrorCode code) {
    return std::string("Failed to ") + verb + " " + texts.Name + ". Errorcode =" + std::to_string(code);
}

// Runs the work; whatever it throws becomes a result. A fault without a code and a text leaves the text
// empty.
ScanInfoResult Attempt(const char* verb, const ScanInfoTexts& texts, const std::function<void()>& work) {
    ScanInfoResult result;
    try {
        work();
        result.Done = true;
    } catch (const ScanInfoFault& fault) {
        result.Text = fault.Text;
        result.Code = fault.Code;
        result.Medium = fault.Medium;
        if (fault.Code != kErrorNone) {
            result.Text = FailureText(verb, texts, fault.Code);
        }
    } catch (const CUserException&) {
        result.Text = kUnknownError;
    } catch (const std::exception&) {
        result.Text = kUnknownError;
    }
    return result;
}

void LogEnd(const ScanInfoResult& result, const std::string& path) {
    LogLine(result.Text, path, result.Done ? kLogDone : kLogFailed);
}

} // namespace

ScanInfoResult RunScanInfoSave(const ScanInfoPlace& place, const ScanInfoTexts& texts,
                               const std::function<void(ScanInfoWriter&)>& write) {
    LogLine("Saving Scan Info File : " + place.FileName, "To Location : " + place.Folder, kLogInProgress);
    ScanInfoResult result = Attempt("save", texts, [&] {
        ReplacementFile target;
        CheckScanInfo(target.Create(place.Target));
        ScanInfoWriter writer(target.Handle());
        write(writer);
        writer.Flush();
        CheckScanInfo(target.Commit());
    });
    if (result.Done) {
        result.Text = std::string(texts.Name) + " saved successfully.";
    } else if (result.Text.empty()) {
        result.Text = kUnknownError;
    }
    LogEnd(result, place.Target);
    return result;
}

void LogScanInfoLoad(const ScanInfoPlace& place) {
    LogLine("Processing Scan Info File : " + place.FileName, "Location : " + place.Folder, kLogInProgress);
}

ScanInfoResult RunScanInfoLoad(const ScanInfoPlace& place, const ScanInfoTexts& texts,
                               const std::function<void(ScanInfoReader&)>& read) {
    ScanInfoResult result = Attempt("open", texts, [&] {
        ScanInfoReader reader(place.Target);
        read(reader);
    });
    if (result.Done) {
        result.Text = std::string(texts.Name) + " opened successfully.";
    } else {
        ResetEngineState();
        result.Text = result.Text.empty() ? texts.Invalid : result.Text;
    }
    LogEnd(result, place.Target);
    return result;
}

void PutMediumAndCandidates(ScanInfoWriter& writer, std::uint32_t magic) {
    writer.PutU32(magic);
    writer.Put(EncodeDisk(Engine.SourceDisk));
    for (const PartitionCandidate& candidate : Engine.SourceDisk.Partitions) {
        writer.Put(EncodeCandidate(candidate, &candidate != &Engine.SourceDisk.Partitions.back()));
    }
}

void TakeMediumAndCandidates(ScanInfoReader& reader, std::uint32_t magic) {
    if (reader.TakeU32() != magic) {
        throw ScanInfoFault{};
    }
    bool more = false;
    Engine.SourceDisk = DecodeDisk(reader.TakeRecord<kStoredDiskBytes>(), more);
    const std::uint16_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    if (sectorBytes == 0 || (sectorBytes & kLowNineBits) != 0) {
        throw ScanInfoFault{};
    }
    while (more) {
        Engine.SourceDisk.Partitions.push_back(
            DecodeCandidate(reader.TakeRecord<kStoredCandidateBytes>(), more));
    }
}

void OpenDescribedMedium() {
    const std::string path = NarrowText(Engine.SourceDisk.Description);
    MediumResult medium = AskIfRefused(OpenAnyMedium(path), path);
    Engine.OpenFault = std::move(medium.Why);
    if (medium.Error != kErrorNone) {
        throw ScanInfoFault{medium.Error, {}, path};
    }
    Engine.SourceDisk.MediaHandle = std::move(medium.Handle);
}

} // namespace thntfs
