#include "cli/Commands.h"
#include "cli/CopySession.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "disktools/CopyDisk.h"
#include "disktools/CopyMapFile.h"
#include "engine/EngineState.h"
#include "engine/LittleEndian.h"
#include "platform/DiskIdentity.h"
#include "platform/DiskListing.h"
#include "platform/Medium.h"
#include "platform/Paths.h"

#include <array>
#include <optional>

namespace thntfs {

namespace {

constexpr std::uint64_t kMapRoomBytes = 1U << 20U; ///< for the map and its successor

bool Exists(const std::string& path) { return NearestExisting(path) == AbsolutePath(path); }

int Refuse(const std::string& text) {
    PrintMessage(text);
    return kExitFailed;
}

/// Serial number of the disk that is read; empty for an image, or where the system doesn't tell.
std::string SourceSerial(const std::string& path) {
    for (const DiskProperties& disk : ListDisks()) {
        if (SameMedium(disk.Path, path)) {
            return disk.Serial;
        }
    }
    return {};
}

/// The image of one run: a new one, or one that goes on.
class ImageTarget {
public:
    explicit ImageTarget(const Options& options)
        : options_(options)
        , mapPath_(MapPathOf(options.Target))
        , isOld_(Exists(options.Target))
        , serial_(SourceSerial(options.Medium)) {}

    /// Looks at all that may be wrong, then opens or makes the image and its map. Gives an exit code.
    int Open() {
        if (SharesMedium(options_.Target, options_.Medium)) {
            return Refuse(options_.Target +
                          " is or lies on the medium that is to be read. Writing there would destroy "
                          "what is to be recovered; choose a file on another disk.");
        }
        if (isOld_ && !options_.Resume && options_.Retries == 0) {
            return Refuse(options_.Target +
                          " exists already and is not written over; --resume goes on with an image "
                          "that was stopped.");
        }
        if (!isOld_ && options_.Resume) {
            return Refuse("There is no " + options_.Target + " to go on with.");
        }
        return isOld_ ? OpenOld() : MakeNew();
    }

    [[nodiscard]] bool IsOld() const { return isOld_; }
    [[nodiscard]] File& Handle() { return *Engine.TargetDisk.WriteHandle; }
    [[nodiscard]] CopyLedger& Ledger() { return *ledger_; }
    [[nodiscard]] const std::string& MapPath() const { return mapPath_; }

private:
    int MakeNew() {
        if (Exists(mapPath_)) {
            return Refuse(mapPath_ + " exists already, without its image; it is not written over.");
        }
        if (const int code = CheckRoom(0); code != kExitDone) {
            return code;
        }
        ErrorCode code = Files().Open(options_.Target, FileMode::CreateNew, Engine.TargetDisk.WriteHandle);
        if (code != kErrorNone) {
            return Refuse("Cannot make " + options_.Target + ": " + SystemErrorText(code));
        }
        TakeLedger(CopyMap(SourceBytes()));
        code = ledger_->Begin({});
        if (code != kErrorNone) {
            Engine.TargetDisk.WriteHandle.reset();
            (void)Files().Delete(options_.Target);
            return Refuse("Cannot make " + mapPath_ + ": " + SystemErrorText(code));
        }
        return kExitDone;
    }

    int OpenOld() {
        if (const MediumResult medium = OpenMedium(options_.Target);
            medium.Handle == nullptr || medium.Handle->DeviceSectorBytes() != 0) {
            return Refuse(options_.Target + " is no image file.");
        }
        std::string why;
        std::optional<SavedMap> saved = LoadMap(mapPath_, SourceBytes(), why);
        if (!saved) {
            return Refuse("Cannot go on with " + options_.Target + ": its map " + mapPath_ +
                          " can't be used: " + why + ".");
        }
        if (!serial_.empty() && !saved->Serial.empty() && saved->Serial != serial_) {
            return Refuse("Cannot go on with " + options_.Target +
                          ": it was taken from the disk with the serial number " + saved->Serial +
                          ", and this one has " + serial_ + ".");
        }
        const ErrorCode code =
            Files().Open(options_.Target, FileMode::OpenReadWrite, Engine.TargetDisk.WriteHandle);
        if (code != kErrorNone) {
            return Refuse("Cannot open " + options_.Target + ": " + SystemErrorText(code));
        }
        return CheckOld(std::move(saved->Map));
    }

    int CheckOld(CopyMap map) {
        std::uint64_t size = 0;
        if (const ErrorCode code = Handle().Size(size); code != kErrorNone) {
            return Refuse("Cannot read " + options_.Target + ": " + SystemErrorText(code));
        }
        std::uint64_t coveredEnd = 0;
        map.ForEach([&](const Area& area) {
            coveredEnd = area.State == AreaState::Unread ? coveredEnd : area.End();
        });
        if (size < coveredEnd) {
            return Refuse("Cannot go on with " + options_.Target + ": it holds less than its map " +
                          mapPath_ + " says.");
        }
        const auto unread = map.Find(AreaState::Unread, 0);
        if ((!unread || unread->First != 0) && !IsStampedForSource()) {
            return Refuse("Cannot go on with " + options_.Target + ": it is not an image of " +
                          options_.Medium + ", which has another size or other sectors.");
        }
        TakeLedger(std::move(map));
        return CheckRoom(size);
    }

    [[nodiscard]] bool IsStampedForSource() {
        std::array<std::uint8_t, 512> sector{};
        std::size_t got = 0;
        return Handle().ReadAt(0, sector, got) == kErrorNone &&
               U64At(sector, kStampedTotalOffset) == Engine.SourceDisk.TotalSectors &&
               U16At(sector, kStampedSectorBytesOffset) == Engine.SourceDisk.BytesPerSector;
    }

    [[nodiscard]] int CheckRoom(std::uint64_t bytesThere) const {
        const std::uint64_t bytes = CopiedBytes(Engine.SourceDisk.TotalSectors, kCopyTransferSectors);
        const std::uint64_t needed = kMapRoomBytes + (bytes > bytesThere ? bytes - bytesThere : 0);
        const auto free = FreeBytesAt(options_.Target);
        if (free && *free < needed) {
            return Refuse("There is too little room for " + options_.Target + ": it needs " +
                          ByteText(needed) + ", and " + ByteText(*free) + " are free.");
        }
        return kExitDone;
    }

    void TakeLedger(CopyMap map) {
        ledger_.emplace(std::move(map), mapPath_, MapComment(AbsolutePath(options_.Medium), serial_));
    }

    static std::uint64_t SourceBytes() {
        return Engine.SourceDisk.TotalSectors * Engine.SourceDisk.BytesPerSector;
    }

    const Options& options_;
    std::string mapPath_;
    bool isOld_;
    std::string serial_;
    std::optional<CopyLedger> ledger_;
};

void TakeImageOf(CopySession& session, ImageTarget& target, const Options& options) {
    const std::uint64_t total = Engine.SourceDisk.TotalSectors;
    session.Begin();
    session.BeginPart("Imaging");
    if (!target.IsOld()) {
        CopyDisk(target.Handle(), total, kCopyTransferSectors, &target.Ledger());
    } else if (options.Resume) {
        ResumeCopy(target.Handle(), total, kCopyTransferSectors, target.Ledger());
    }
    if (options.Retries != 0 && Engine.ScanRunFlag != 0 && !session.Host.HadFatal()) {
        session.BeginPart("Reading bad places again");
        RetryBadSectors(target.Handle(), options.Retries, target.Ledger());
    }
}

} // namespace

int RunImage(const Options& options) {
    CopySession session(options, CopyWork::Imaging);
    if (const int code = session.OpenSourceDisk(); code != kExitDone) {
        return code;
    }
    ImageTarget target(options);
    if (const int code = target.Open(); code != kExitDone) {
        return code;
    }
    if (IsMounted(options.Medium)) {
        PrintMessage(options.Medium +
                     " is mounted: what is written to it meanwhile may stand in the image in part.");
    }
    TakeImageOf(session, target, options);
    return session.Finish(target.Ledger(), target.MapPath());
}

} // namespace thntfs
