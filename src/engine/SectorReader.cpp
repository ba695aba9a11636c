#include "engine/SectorReader.h"

#include "engine/EngineState.h"
#include "engine/Host.h"
#include "platform/media/Medium.h"

#include <algorithm>
#include <array>

namespace thntfs {

namespace {

constexpr std::uint64_t kStampedSectorSizeOffset = 444;

bool PassesOver(ErrorCode code) {
    return code == kErrorNone || code == kErrorCrc || code == kErrorSectorNotFound || code == kErrorIoDevice;
}

void ReportFailedRead(std::uint64_t sector, ErrorCode code) {
    LogLine("Drive access error @ sector =" + std::to_string(sector) + " (Code =" + std::to_string(code) +
                ")",
            SystemErrorText(code), kLogFailed);
}

void NoteTried(std::uint64_t sector, ErrorCode code) {
    if (code != kErrorNone) {
        Engine.BadSectors.push_back(sector);
    }
    Engine.UntriedFrom = sector + 1;
}

ErrorCode WalkSectors(Bytes buffer, std::uint64_t firstSector, ErrorCode code) {
    const std::size_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    Engine.UntriedFrom = firstSector;
    if (sectorBytes == 0) {
        return Engine.ScanRunFlag == 0 ? kErrorNone : code;
    }
    std::uint64_t sector = firstSector;
    for (std::size_t position = 0; position < buffer.size(); position += sectorBytes, ++sector) {
        if (!JobMayGoOn()) {
            return kErrorNone;
        }
        if (!PassesOver(code)) {
            RaiseFatal(code);
        }
        if (code == kErrorIoDevice) {
            Host().PauseOneSecond();
        }
        const std::size_t bytes = std::min(sectorBytes, buffer.size() - position);
        code = ReadSectorsOnce(buffer.subspan(position, bytes), sector);
        NoteTried(sector, code);
    }
    Engine.UntriedFrom = kAllWereTried;
    return code;
}

ErrorCode ReadWhole(Bytes buffer, std::uint64_t firstSector) {
    Engine.BadSectors.clear();
    Engine.UntriedFrom = kAllWereTried;
    return ReadSectorsOnce(buffer, firstSector);
}

// A read that reaches behind the end of the medium leaves that part of the buffer alone.
void ClearBehindEnd(Bytes buffer, std::uint64_t firstSector) {
    const DiskRecord& disk = Engine.SourceDisk;
    const std::uint64_t size = disk.MediaHandle != nullptr ? disk.MediaHandle->SizeBytes() : 0;
    const std::uint64_t offset = firstSector * disk.BytesPerSector;
    if (offset > size || buffer.size() > size - offset) {
        std::fill(buffer.begin(), buffer.end(), std::uint8_t{0});
    }
}

} // namespace

bool JobMayGoOn() {
    Host().PassGate();
    return Engine.ScanRunFlag != 0;
}

void RaiseFatal(ErrorCode code) {
    Host().ErrorBox(SystemErrorText(code));
    throw CUserException();
}

ErrorCode ReadSectorsOnce(Bytes buffer, std::uint64_t firstSector) {
    const DiskRecord& disk = Engine.SourceDisk;
    const ErrorCode code = disk.MediaHandle == nullptr
                               ? kErrorInvalidHandle
                               : disk.MediaHandle->ReadAt(firstSector * disk.BytesPerSector, buffer);
    if (code != kErrorNone) {
        ReportFailedRead(firstSector, code);
    }
    return code;
}

ErrorCode ReadSectors(Bytes buffer, std::uint64_t firstSector) {
    const ErrorCode code = ReadWhole(buffer, firstSector);
    if (code == kErrorNone || buffer.empty()) {
        return code;
    }
    return WalkSectors(buffer, firstSector, code);
}

bool TryReadSectors(Bytes buffer, std::uint64_t firstSector) {
    const DiskRecord& disk = Engine.SourceDisk;
    ClearBehindEnd(buffer, firstSector);
    return disk.MediaHandle != nullptr &&
           disk.MediaHandle->ReadAt(firstSector * disk.BytesPerSector, buffer) == kErrorNone;
}

ErrorCode ReadSectorsCleared(Bytes buffer, std::uint64_t firstSector) {
    ClearBehindEnd(buffer, firstSector);
    const ErrorCode code = ReadWhole(buffer, firstSector);
    if (code == kErrorNone || buffer.empty()) {
        return code;
    }
    std::fill(buffer.begin(), buffer.end(), std::uint8_t{0});
    return WalkSectors(buffer, firstSector, code);
}

void ProbeImageSectorSize() {
    std::array<std::uint8_t, 512> sector{};
    ReadSectors(sector, 0);
    Engine.SourceDisk.BytesPerSector = U16At(sector, kStampedSectorSizeOffset);
}

} // namespace thntfs
