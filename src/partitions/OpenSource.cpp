#include "partitions/OpenSource.h"

#include "engine/AskForDisk.h"
#include "engine/EngineState.h"
#include "engine/SectorReader.h"
#include "images/AnyMedium.h"
#include "platform/files/Paths.h"
#include "platform/media/Medium.h"
#include "platform/system/CoreText.h"
#include "platform/system/Text.h"

#include <algorithm>
#include <bit>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint32_t kSmallestSectorBytes = 512;
constexpr std::uint32_t kLargestSectorBytes = 32768; // the largest that the stored records hold

bool IsMediumSectorSize(std::uint32_t bytes) {
    return std::has_single_bit(bytes) && bytes >= kSmallestSectorBytes && bytes <= kLargestSectorBytes;
}

void DescribeSource(const std::string& path) {
    Engine.SourceDisk.Description = WideText(AbsolutePath(path)).substr(0, kMaxDescriptionUnits);
}

void CountSectors() {
    DiskRecord& disk = Engine.SourceDisk;
    disk.TotalSectors = disk.MediaHandle->SizeBytes() / disk.BytesPerSector;
}

ErrorCode TakeDevice(const std::string& path) {
    const std::uint32_t sectorBytes = Engine.SourceDisk.MediaHandle->DeviceSectorBytes();
    if (!IsMediumSectorSize(sectorBytes)) {
        ResetEngineState();
        return kErrorSectorSize;
    }
    Engine.SourceDisk.BytesPerSector = static_cast<std::uint16_t>(sectorBytes);
    CountSectors();
    DescribeSource(path);
    return kErrorNone;
}

// The stamp is 0 in an image made by another tool, and bytes of boot code where the image begins with a
// volume: what is no sector size isn't meant as one.
void TakeImage(const std::string& path) {
    DiskRecord& disk = Engine.SourceDisk;
    disk.BytesPerSector = static_cast<std::uint16_t>(disk.MediaHandle->ImageSectorBytes());
    if (!IsMediumSectorSize(disk.MediaHandle->ImageSectorBytes())) {
        ProbeImageSectorSize();
    }
    if (!IsMediumSectorSize(disk.BytesPerSector)) {
        disk.BytesPerSector = kSmallestSectorBytes;
    }
    CountSectors();
    DescribeSource(path);
    Engine.ImagePath = AbsolutePath(path);
    Engine.ImageFolder = Engine.ImagePath.substr(0, Engine.ImagePath.rfind('/'));
}

ErrorCode OpenHandle(const std::string& path) {
    ResetEngineState();
    MediumResult medium = AskIfRefused(OpenAnyMedium(path), path);
    Engine.OpenFault = std::move(medium.Why);
    Engine.SourceDisk.MediaHandle = std::move(medium.Handle);
    return medium.Error;
}

ErrorCode ReadOneSector(std::uint64_t sector) {
    const DiskRecord& disk = Engine.SourceDisk;
    std::vector<std::uint8_t> buffer(disk.BytesPerSector);
    return disk.MediaHandle == nullptr ? kErrorInvalidHandle
                                       : disk.MediaHandle->ReadAt(sector * disk.BytesPerSector, buffer);
}

// A code that a bad place may give, and a whole device that fails as well.
bool MayBeOneSector(ErrorCode code) {
    return code == kErrorCrc || code == kErrorSectorNotFound || code == kErrorIoDevice;
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
    return TakeDevice(devicePath);
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
    return code != kErrorNone ? code : TakeSource(path);
}

ErrorCode TakeSource(const std::string& path) {
    if (SourceIsDevice()) {
        return TakeDevice(path);
    }
    TakeImage(path);
    return kErrorNone;
}

std::string OpenErrorText(ErrorCode code) {
    if (code == kErrorImage && !Engine.OpenFault.empty()) {
        return Engine.OpenFault;
    }
    return code == kErrorSectorSize
               ? CoreText("Core", "It states sectors of a size that can't be read: powers of two from 512 "
                                  "to 32768 bytes can.")
               : SystemErrorText(code);
}

std::vector<std::string> OpenFailureLines(const std::string& path, ErrorCode code) {
    if (code == kErrorDirectory) {
        return {path + " is a folder. Give a disk, or a file that holds the image of one."};
    }
    std::vector<std::string> lines = {"Cannot open " + path + ": " + OpenErrorText(code)};
    if (std::string advice = RightsAdvice(code); !advice.empty()) {
        lines.push_back(std::move(advice));
    }
    return lines;
}

MediumAnswer AskMedium() {
    MediumAnswer answer;
    answer.FirstSector = ReadOneSector(0);
    answer.Answers = answer.FirstSector == kErrorNone;
    const std::uint64_t last = std::max<std::uint64_t>(Engine.SourceDisk.TotalSectors, 1) - 1;
    for (const std::uint64_t sector : {last / 4, last / 2, last}) {
        answer.Answers =
            answer.Answers || (MayBeOneSector(answer.FirstSector) && ReadOneSector(sector) == kErrorNone);
    }
    return answer;
}

} // namespace thntfs
