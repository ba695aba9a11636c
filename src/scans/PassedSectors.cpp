#include "scans/PassedSectors.h"

#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/RecordTable.h"

#include <algorithm>

namespace thntfs {

PassedSectors::PassedSectors(std::uint64_t firstSector, std::uint64_t endSector, bool on)
    : firstSector_(firstSector)
    , endSector_(endSector)
    , on_(on)
    , record_(Engine.VolumeParams.FileRecordBytes) {}

void PassedSectors::Look(ConstBytes bytes, std::uint64_t sector) {
    if (!on_) {
        return;
    }
    const std::size_t sectorBytes = Engine.VolumeParams.BytesPerSector;
    if (sector == tailEnd_) {
        LookInJoint(bytes, sector);
    }
    for (std::size_t at = 0; at + record_.size() <= bytes.size(); at += sectorBytes) {
        LookAt(bytes.subspan(at, record_.size()), sector + at / sectorBytes);
    }
    const std::size_t kept = std::min(bytes.size(), record_.size() - sectorBytes);
    tail_.assign(bytes.end() - static_cast<std::ptrdiff_t>(kept), bytes.end());
    tailEnd_ = sector + bytes.size() / sectorBytes;
}

// Records that begin in the bytes before and end in these.
void PassedSectors::LookInJoint(ConstBytes bytes, std::uint64_t sector) {
    const std::size_t sectorBytes = Engine.VolumeParams.BytesPerSector;
    std::vector<std::uint8_t> joint = tail_;
    const ConstBytes head = bytes.first(std::min(bytes.size(), record_.size() - sectorBytes));
    joint.insert(joint.end(), head.begin(), head.end());
    const std::uint64_t first = sector - tail_.size() / sectorBytes;
    for (std::size_t at = 0; at < tail_.size() && at + record_.size() <= joint.size(); at += sectorBytes) {
        LookAt(ConstBytes(joint).subspan(at, record_.size()), first + at / sectorBytes);
    }
}

bool PassedSectors::IsPassed(std::uint64_t sector) const {
    return (sector - firstSector_) % Engine.VolumeParams.SectorsPerFileRecord != 0 && sector < endSector_;
}

void PassedSectors::LookAt(ConstBytes record, std::uint64_t sector) {
    const VolumeParams& volume = Engine.VolumeParams;
    if (U32At(record, 0) != kFileMagic || !IsPassed(sector)) {
        return;
    }
    std::copy(record.begin(), record.end(), record_.begin());
    if (!CheckFileRecord(record_, volume.FileRecordBytes, volume.BytesPerSector)) {
        return;
    }
    if (UsaOffset(record_) == kUsaOffsetNew) {
        NoteFoundRecord(OwnRecordNumber(record_), sector);
    }
    if (BaseReference(record_) == 0) {
        found_.push_back(sector);
    }
}

} // namespace thntfs
