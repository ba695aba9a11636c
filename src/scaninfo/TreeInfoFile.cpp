#include "scaninfo/TreeInfoFile.h"

#include "catalogue/Catalogue.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "platform/files/File.h"
#include "scaninfo/CatalogueRepair.h"
#include "scaninfo/ConditionsFile.h"
#include "scaninfo/ScanInfoJob.h"

namespace thntfs {

namespace {

constexpr const char* kForeignCatalogue =
    "Not saved: the scan's result belongs to another medium or partition than the one that is open now.";
constexpr const char* kNoConditions = "The condition of deleted files could not be saved. Errorcode =";
constexpr std::uint32_t kSeparator = 0x01010101;

// No volume has records of more than a few sectors. Each read of a file begins with a buffer of this size.
constexpr std::uint32_t kMaxFileRecordBytes = 1U << 20U;

std::string CataloguePath(const char* name) { return Engine.CatalogueFolder + name; }

void PutVolume(ScanInfoWriter& writer) {
    writer.Put(EncodeVolume(Engine.VolumeParams));
    for (const MftExtent& extent : Engine.VolumeParams.MftExtents) {
        writer.Put(EncodeMftExtent(extent, &extent != &Engine.VolumeParams.MftExtents.back()));
    }
}

void TakeVolume(ScanInfoReader& reader) {
    bool more = false;
    Engine.VolumeParams = DecodeVolume(reader.TakeRecord<kStoredVolumeBytes>(), more);
    if (Engine.VolumeParams.FileRecordBytes > kMaxFileRecordBytes) {
        throw ScanInfoFault{};
    }
    while (more) {
        Engine.VolumeParams.MftExtents.push_back(
            DecodeMftExtent(reader.TakeRecord<kStoredMftExtentBytes>(), more));
    }
}

void TakeSeparator(ScanInfoReader& reader) {
    if (reader.TakeU32() != kSeparator) {
        throw ScanInfoFault{};
    }
}

// The size is looked at before anything is created, so a size that can't be true costs nothing.
void TakeCatalogueFile(ScanInfoReader& reader, const char* name) {
    const std::uint64_t size = reader.TakeU64();
    if (size > reader.Left() || size > kMaxCatalogueFileBytes) {
        throw ScanInfoFault{};
    }
    const std::string path = CataloguePath(name);
    std::unique_ptr<File> file;
    CheckScanInfo(Files().Open(path, FileMode::CreateOwn, file));
    reader.CopyTo(*file, size);
}

void ReadTreeInfo(ScanInfoReader& reader) {
    TakeMediumAndCandidates(reader, kTreeInfoMagic);
    TakeVolume(reader);
    TakeSeparator(reader);
    OpenDescribedMedium();
    TakeCatalogueFile(reader, kTreeFileName);
    TakeSeparator(reader);
    TakeCatalogueFile(reader, kEntryFileName);
    TakeSeparator(reader);
    TakeCatalogueFile(reader, kNameFileName);
    RepairCatalogue();
    if (OpenCatalogue() == 0) {
        throw ScanInfoFault{kErrorNone, "Supporting Files couldn't be opened", {}};
    }
    ClaimCatalogue();
}

// Together they would bring back wrong bytes under right names.
void RefuseForeignCatalogue() {
    if (!CatalogueIsOfVolumeInWork()) {
        throw ScanInfoFault{kErrorNone, kForeignCatalogue, {}};
    }
}

} // namespace

ScanInfoResult SaveTreeInfo(const std::string& path) {
    const ScanInfoPlace place = ScanInfoPlaceOf(path, kTreeInfoExtension);
    ScanInfoResult result = RunScanInfoSave(place, kTreeInfoTexts, [](ScanInfoWriter& writer) {
        RefuseForeignCatalogue();
        PutMediumAndCandidates(writer, kTreeInfoMagic);
        PutVolume(writer);
        writer.PutU32(kSeparator);
        writer.PutFile(CataloguePath(kTreeFileName));
        writer.PutU32(kSeparator);
        writer.PutFile(CataloguePath(kEntryFileName));
        writer.PutU32(kSeparator);
        writer.PutFile(CataloguePath(kNameFileName));
    });
    if (result.Done) {
        result.Beside = SaveConditions(place.Target);
    }
    if (result.Beside != kErrorNone) {
        LogLine(kNoConditions + std::to_string(result.Beside), place.Target + kConditionsExtension,
                kLogFailed);
    }
    return result;
}

ScanInfoResult LoadTreeInfo(const std::string& path, const std::function<void()>& show,
                            const std::function<bool(const MediumMatch&)>& accept) {
    const ScanInfoPlace place = ScanInfoPlaceOf(path);
    LogScanInfoLoad(place);
    ResetEngineState();
    CloseCatalogue();
    ScanInfoResult result = RunScanInfoLoad(place, kTreeInfoTexts, [&](ScanInfoReader& reader) {
        ReadTreeInfo(reader);
        LoadConditions(place.Target);
        if (accept && !accept(MatchMedium())) {
            throw ScanInfoFault{kErrorNone, "The medium isn't as it was when it was scanned.", {}};
        }
        if (show) {
            show();
        }
    });
    if (!result.Done) {
        CloseCatalogue();
    }
    return result;
}

} // namespace thntfs
