#include "partitions/OpenSource.h"

#include "engine/EngineState.h"
#include "engine/SectorReader.h"
#include "platform/Paths.h"
#include "platform/Text.h"

namespace thntfs {

namespace {

constexpr std::uint16_t kDefaultSectorBytes = 512;
constexpr std::uint16_t kBitNine = 0x200;
constexpr std::uint16_t kLowNineBits = 0x1FF;

void DescribeSource(const std::string& path) {
    Engine.SourceDisk.Description = WideText(AbsolutePath(path)).substr(0, kMaxDescriptionUnits);
}

void CountSectors() {
    DiskRecord& disk = Engine.SourceDisk;
    disk.TotalSectors = disk.MediaHandle->SizeBytes() / disk.BytesPerSector;
}

void TakeDevice(const std::string& path) {
    Engine.SourceDisk.BytesPerSector =
        static_cast<std::uint16_t>(Engine.SourceDisk.MediaHandle->DeviceSectorBytes());
    CountSectors();
    DescribeSource(path);
}

// The stamp is 0 in an image made by another tool, and bytes of boot code where the image begins with a
// volume.
void TakeImage(const std::string& path) {
    DiskRecord& disk = Engine.SourceDisk;
    ProbeImageSectorSize();
    const std::uint16_t stamped = disk.BytesPerSector;
    if (stamped == 0 || (stamped & kBitNine) != 0 || (stamped & kLowNineBits) != 0) {
        disk.BytesPerSector = kDefaultSectorBytes;
    }
    CountSectors();
    DescribeSource(path);
    Engine.ImagePath = AbsolutePath(path);
    Engine.ImageFolder = Engine.ImagePath.substr(0, Engine.ImagePath.rfind('/'));
}

ErrorCode OpenHandle(const std::string& path) {
    ResetEngineState();
    MediumResult medium = OpenMedium(path);
    Engine.SourceDisk.MediaHandle = std::move(medium.Handle);
    return medium.Error;
}

} // namespace

bool SourceIsDevice() {
    return Engine.SourceDisk.MediaHandle != nullptr &&
           Engine.SourceDisk.MediaHandle->DeviceSectorBytes() != 0;
}

ErrorCode OpenPhysicalDisk(const std::string& devicePath) {
    const ErrorCode code = OpenHandle(devicePath);
    if (code != kErrorNone) {
        return code;
    }
    if (!SourceIsDevice()) {
        ResetEngineState();
        return kErrorInvalidParameter;
    }
    TakeDevice(devicePath);
    return kErrorNone;
}

ErrorCode OpenImageFile(const std::string& imagePath) {
    const ErrorCode code = OpenHandle(imagePath);
    if (code == kErrorNone) {
        TakeImage(imagePath);
    }
    return code;
}

ErrorCode OpenSource(const std::string& path) {
    const ErrorCode code = OpenHandle(path);
    if (code != kErrorNone) {
        return code;
    }
    if (SourceIsDevice()) {
        TakeDevice(path);
    } else {
        TakeImage(path);
    }
    return kErrorNone;
}

} // namespace thntfs
