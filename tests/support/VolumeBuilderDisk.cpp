#include "support/VolumeBuilderDisk.h"

#include <algorithm>

namespace thntfs::test {

BootSectorFields BootFieldsOf(const VolumeGeometry& geometry) {
    return {.SectorBytes = static_cast<std::uint16_t>(geometry.SectorBytes),
            .SectorsPerCluster = static_cast<std::uint8_t>(geometry.SectorsPerCluster),
            .TotalSectors = geometry.TotalSectors,
            .MftCluster = geometry.MftCluster(),
            .MirrorCluster = geometry.MirrorCluster,
            .RecordSizeCode = geometry.SizeCode(geometry.RecordBytes),
            .IndexBlockSizeCode = geometry.SizeCode(geometry.IndexBlockBytes),
            .Serial = geometry.Serial};
}

ByteVector EncodeBootSector(const BootSectorFields& fields, std::uint32_t bytes) {
    ByteVector sector(bytes);
    std::copy_n("\xEB\x52\x90NTFS    ", 11, sector.begin());
    PutNumber(sector, 11, fields.SectorBytes);
    PutNumber(sector, 13, fields.SectorsPerCluster);
    PutNumber(sector, 21, std::uint8_t{0xF8}); // a fixed disk
    PutNumber(sector, 36, std::uint16_t{0x80});
    PutNumber(sector, 38, std::uint16_t{0x80});
    PutNumber(sector, 40, fields.TotalSectors);
    PutNumber(sector, 48, fields.MftCluster);
    PutNumber(sector, 56, fields.MirrorCluster);
    PutNumber(sector, 64, fields.RecordSizeCode);
    PutNumber(sector, 68, fields.IndexBlockSizeCode);
    PutNumber(sector, 72, fields.Serial);
    PutNumber(sector, 510, std::uint16_t{0xAA55});
    return sector;
}

ByteVector EncodePartitionTable(const std::vector<PartitionEntry>& entries, std::uint16_t signature) {
    ByteVector sector(512);
    std::size_t offset = 446;
    for (const PartitionEntry& entry : entries) {
        PutNumber(sector, offset + 4, entry.Type);
        PutNumber(sector, offset + 8, entry.FirstSector);
        PutNumber(sector, offset + 12, entry.SectorCount);
        offset += 16;
    }
    PutNumber(sector, 510, signature);
    return sector;
}

void StampImage(Bytes firstSector, std::uint64_t totalSectors, std::uint16_t sectorBytes) {
    PutNumber(firstSector, 432, totalSectors);
    PutNumber(firstSector, 444, sectorBytes);
}

} // namespace thntfs::test
