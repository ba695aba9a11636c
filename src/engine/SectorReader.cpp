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

void ReadOneSector(Bytes buffer, std::uint64_t sector, ReadOutcome& outcome) {
    outcome.Code = ReadSectorsOnce(buffer, sector);
    if (outcome.Code != kErrorNone) {
        outcome.BadSectors.push_back(sector);
    }
    outcome.UntriedFrom = sector + 1;
}

// A failed request is walked sector by sector.
void WalkSectors(Bytes buffer, std::uint64_t firstSector, ReadOutcome& outcome) {
    const std::size_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    outcome.UntriedFrom = firstSector;
    if (sectorBytes == 0) {
        outcome.Code = Engine.ScanRunFlag == 0 ? kErrorNone : outcome.Code;
        return;
    }
    std::uint64_t sector = firstSector;
    for (std::size_t position = 0; position < buffer.size(); position += sectorBytes, ++sector) {
        if (!JobMayGoOn()) {
            outcome.Code = kErrorNone;
            return;
        }
        if (!PassesOver(outcome.Code)) {
            RaiseFatal(outcome.Code);
        }
        if (outcome.Code == kErrorIoDevice) {
            Host().PauseOneSecond();
        }
        const std::size_t bytes = std::min(sectorBytes, buffer.size() - position);
        ReadOneSector(buffer.subspan(position, bytes), sector, outcome);
    }
    outcome.UntriedFrom = kAllWereTried;
}

// A read that reaches behind the end of the medium leaves that part of the buffer alone.
void ClearBehindEnd(Bytes buffer, std::uint64_t firstSector) {
    const std::uint64_t size = MediumBytes();
    const std::uint64_t offset = firstSector * Engine.SourceDisk.BytesPerSector;
    if (offset > size || buffer.size() > size - offset) {
        std::fill(buffer.begin(), buffer.end(), std::uint8_t{0});
    }
}

} // namespace

std::uint64_t MediumBytes() {
    const auto& medium = Engine.SourceDisk.MediaHandle;
    return medium != nullptr ? medium->SizeBytes() : 0;
}

bool JobMayGoOn() {
    Host().PassGate();
    return Engine.ScanRunFlag != 0;
}

void RaiseFatal(ErrorCode code) {
    Host().ErrorBox(SystemErrorText(code));
    throw CUserException{code};
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

ReadOutcome ReadSectors(Bytes buffer, std::uint64_t firstSector) {
    ReadOutcome outcome;
    outcome.Code = ReadSectorsOnce(buffer, firstSector);
    if (outcome.Code != kErrorNone && !buffer.empty()) {
        WalkSectors(buffer, firstSector, outcome);
    }
    return outcome;
}

bool TryReadSectors(Bytes buffer, std::uint64_t firstSector) {
    const DiskRecord& disk = Engine.SourceDisk;
    ClearBehindEnd(buffer, firstSector);
    return disk.MediaHandle != nullptr &&
           disk.MediaHandle->ReadAt(firstSector * disk.BytesPerSector, buffer) == kErrorNone;
}

ReadOutcome ReadSectorsCleared(Bytes buffer, std::uint64_t firstSector) {
    ReadOutcome outcome;
    ClearBehindEnd(buffer, firstSector);
    outcome.Code = ReadSectorsOnce(buffer, firstSector);
    if (outcome.Code != kErrorNone && !buffer.empty()) {
        std::fill(buffer.begin(), buffer.end(), std::uint8_t{0});
        WalkSectors(buffer, firstSector, outcome);
    }
    return outcome;
}

void ProbeImageSectorSize() {
    std::array<std::uint8_t, 512> sector{};
    ReadSectors(sector, 0);
    Engine.SourceDisk.BytesPerSector = U16At(sector, kStampedSectorSizeOffset);
}

} // namespace thntfs
