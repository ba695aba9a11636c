#include "disktools/ImageTarget.h"

#include "disktools/AdoptImage.h"
#include "disktools/CopiedContents.h"
#include "disktools/CopyDisk.h"
#include "engine/EngineState.h"
#include "platform/files/File.h"
#include "platform/files/Paths.h"
#include "platform/media/DiskIdentity.h"
#include "platform/media/DiskListing.h"
#include "platform/media/Medium.h"

#include <utility>

namespace thntfs {

namespace {

bool Exists(const std::string& path) { return NearestExisting(path) == AbsolutePath(path); }

/// Serial number of the disk that is read; empty for an image, or where the system doesn't tell.
std::string SourceSerial(const std::string& path) {
    for (const DiskProperties& disk : ListDisks()) {
        if (SameMedium(disk.Path, path)) {
            return disk.Serial;
        }
    }
    return {};
}

std::uint64_t SourceBytes() { return Engine.SourceDisk.TotalSectors * Engine.SourceDisk.BytesPerSector; }

bool IsOrdinaryFile(const std::string& path) {
    const MediumResult medium = OpenMedium(path);
    return medium.Handle != nullptr && medium.Handle->DeviceSectorBytes() == 0;
}

} // namespace

ImageTarget::ImageTarget(std::string source, std::string image)
    : source_(std::move(source))
    , image_(std::move(image))
    , mapPath_(MapPathOf(image_))
    , isOld_(Exists(image_))
    , serial_(SourceSerial(source_)) {}

File& ImageTarget::Handle() { return *Engine.TargetDisk.WriteHandle; }

CopyVerdict ImageTarget::Open(bool goOn, bool mustExist) {
    for (const std::string& path : {image_, mapPath_}) {
        if (CopyVerdict verdict = CheckCopyPlaces(source_, path); !verdict.Allowed()) {
            return verdict;
        }
    }
    if (isOld_ && !goOn) {
        return Refused(CopyRefusal::ImageExists);
    }
    if (!isOld_ && mustExist && !MapIsOfNothing()) {
        return Refused(CopyRefusal::NoImage);
    }
    return isOld_ ? OpenOld() : MakeNew();
}

// What a run leaves that was killed after it had made its map, and before the image.
bool ImageTarget::MapIsOfNothing() const {
    std::string why;
    const std::optional<SavedMap> saved = LoadMap(mapPath_, SourceBytes(), why);
    return saved && saved->Map.BytesOf(AreaState::Unread) == saved->Map.TotalBytes();
}

// The map comes first: an image without one could not be gone on with.
CopyVerdict ImageTarget::MakeNew() {
    if (Exists(mapPath_) && !MapIsOfNothing()) {
        CopyVerdict verdict = Refused(CopyRefusal::MapExists);
        verdict.Path = mapPath_;
        return verdict;
    }
    if (CopyVerdict verdict = CheckImageRoom(image_, 0); !verdict.Allowed()) {
        return verdict;
    }
    MakeLedger(CopyMap(SourceBytes()));
    ErrorCode code = ledger_->Begin({});
    if (code != kErrorNone) {
        return Failed(CopyRefusal::CannotMake, mapPath_, code);
    }
    code = Files().Open(image_, FileMode::CreateNew, Engine.TargetDisk.WriteHandle);
    if (code != kErrorNone && code != kErrorFileExists) { // that one may be another run's, and its map
        (void)Files().Delete(mapPath_);
    }
    return code == kErrorNone ? CopyVerdict{} : Failed(CopyRefusal::CannotMake, image_, code);
}

CopyVerdict ImageTarget::OpenOld() {
    if (!IsOrdinaryFile(image_)) {
        return Refused(CopyRefusal::NoImageFile);
    }
    std::string why;
    std::optional<SavedMap> saved = LoadMap(mapPath_, SourceBytes(), why);
    if (!saved) {
        return Refused(CopyRefusal::BadMap, why);
    }
    if (!serial_.empty() && !saved->Serial.empty() && saved->Serial != serial_) {
        return Refused(CopyRefusal::OtherSerial, saved->Serial);
    }
    const ErrorCode code = Files().Open(image_, FileMode::OpenReadWrite, Engine.TargetDisk.WriteHandle);
    if (code != kErrorNone) {
        return Failed(CopyRefusal::CannotOpen, image_, code);
    }
    CopyVerdict verdict = CheckOld(*saved);
    if (verdict.Allowed()) {
        MakeLedger(std::move(saved->Map));
    }
    return verdict;
}

CopyVerdict ImageTarget::CheckOld(const SavedMap& saved) {
    std::uint64_t size = 0;
    if (const ErrorCode code = Handle().Size(size); code != kErrorNone) {
        return Failed(CopyRefusal::CannotRead, image_, code);
    }
    const bool isOurs = !saved.Source.empty();
    if (size < (isOurs ? TriedEnd(saved.Map) : ReadEnd(saved.Map))) {
        return Refused(CopyRefusal::ShorterThanMap);
    }
    const auto unread = saved.Map.Find(AreaState::Unread, 0);
    const bool isBegun = !unread || unread->First != 0;
    if (isBegun && !IsStampedForSource(Handle()) && (isOurs || !IsUnstampedCopy(Handle(), saved.Map))) {
        return Refused(CopyRefusal::OtherSize);
    }
    CopyVerdict verdict = CheckContents(saved);
    return verdict.Allowed() ? CheckImageRoom(image_, size) : verdict;
}

// What was copied tells the medium better than its name, which changes from start to start.
CopyVerdict ImageTarget::CheckContents(const SavedMap& saved) {
    const ContentCheck check = CompareCopied(Handle(), saved.Map);
    if (check.Code != kErrorNone) {
        return Failed(CopyRefusal::CannotRead, image_, check.Code);
    }
    if (check.Differs) {
        CopyVerdict verdict = Refused(CopyRefusal::OtherContents);
        verdict.Sector = *check.Differs;
        return verdict;
    }
    if (!saved.Source.empty() && saved.Source != OneLine(AbsolutePath(source_))) {
        otherSource_ = saved.Source;
    }
    const bool unknown = check.Compared == 0 && saved.Map.BytesOf(AreaState::Read) != 0;
    return unknown && !otherSource_.empty() ? Refused(CopyRefusal::SourceUnknown, otherSource_)
                                            : CopyVerdict{};
}

CopyVerdict ImageTarget::Refused(CopyRefusal why, std::string detail) const {
    CopyVerdict verdict;
    verdict.Why = why;
    verdict.Path = image_;
    verdict.Detail = std::move(detail);
    return verdict;
}

CopyVerdict ImageTarget::Failed(CopyRefusal why, const std::string& path, ErrorCode code) const {
    CopyVerdict verdict = Refused(why);
    verdict.Path = path;
    verdict.Code = code;
    return verdict;
}

void ImageTarget::MakeLedger(CopyMap map) {
    ledger_.emplace(std::move(map), mapPath_, MapComment(AbsolutePath(source_), serial_));
    ledger_->WatchTarget(AbsolutePath(image_));
}

std::string ImageTarget::OriginRemark() const {
    return otherSource_.empty()
               ? otherSource_
               : image_ + " was begun from " + otherSource_ + "; what was copied of that stands on " +
                     source_ + " too, so it goes on.";
}

CopyJob ImageTarget::TakeJob() {
    return {.SourcePath = source_,
            .TargetPath = image_,
            .MapPath = mapPath_,
            .Ledger = std::move(*ledger_),
            .TotalSectors = Engine.SourceDisk.TotalSectors,
            .Start = isOld_ ? CopyStart::GoOn : CopyStart::Anew};
}

} // namespace thntfs
