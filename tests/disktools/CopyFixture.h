#pragma once

#include "disktools/CopyDisk.h"
#include "disktools/CopyMapFile.h"
#include "platform/files/WorkFolder.h"
#include "support/EngineFixture.h"
#include "support/MemoryFile.h"

#include <cstdlib>
#include <optional>
#include <unistd.h>

namespace thntfs::test {

/// A folder of the test's own, in memory where there is such a place: some tests sync after each transfer.
class CopyFolder {
public:
    CopyFolder() {
        if (::access("/dev/shm", W_OK) == 0) {
            ::setenv("TMPDIR", "/dev/shm", 0);
        }
        EXPECT_EQ(folder_.Create(), kErrorNone);
    }
    [[nodiscard]] const std::string& Path() const { return folder_.Path(); }
    std::string operator/(const std::string& name) const { return folder_.Path() + "/" + name; }

private:
    WorkFolder folder_;
};

/// Sectors with their number in them, so that each differs from all others and from zeros.
inline ByteVector DiskBytes(std::uint64_t sectors, std::uint32_t sectorBytes) {
    ByteVector bytes(sectors * sectorBytes);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::uint64_t sector = i / sectorBytes + 1;
        bytes[i] = i % 4 == 3 ? std::uint8_t{0xA5} : static_cast<std::uint8_t>(sector >> (8 * (i % 4)));
    }
    return bytes;
}

/// A copy in progress of a disk that fails by Plan.
class CopyFixture : public EngineFixture {
protected:
    CopyFixture() { Engine.ScanRunFlag = 1; }

    void OpenNumbered(std::uint64_t sectors, std::uint16_t sectorBytes = 512) {
        Original = DiskBytes(sectors, sectorBytes);
        OpenDisk(Original, sectorBytes);
        Plan->GivePart = false;
    }

    [[nodiscard]] static std::uint64_t Total() { return Engine.SourceDisk.TotalSectors; }
    [[nodiscard]] static std::uint64_t SectorBytes() { return Engine.SourceDisk.BytesPerSector; }

    /// What a copy of the whole disk must be, with these sectors bad.
    [[nodiscard]] ByteVector Expected(const std::vector<std::uint64_t>& badSectors = {}) const {
        ByteVector bytes = Original;
        for (const std::uint64_t sector : badSectors) {
            const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(sector * SectorBytes());
            std::fill(first, first + static_cast<std::ptrdiff_t>(SectorBytes()), std::uint8_t{0});
        }
        bytes.resize(std::max<std::size_t>(bytes.size(), kCopyTransferSectors * SectorBytes()));
        StampImage(bytes, Total(), static_cast<std::uint16_t>(SectorBytes()));
        return bytes;
    }

    [[nodiscard]] static CopyMap FreshMap() { return CopyMap(Total() * SectorBytes()); }

    bool Copy(CopyLedger* ledger = nullptr) {
        return CopyDisk(Target, Total(), kCopyTransferSectors, ledger);
    }
    bool Resume(CopyLedger& ledger) { return ResumeCopy(Target, Total(), kCopyTransferSectors, ledger); }

    ByteVector Original;
    MemoryFile Target;
};

/// The areas of a map as "first+size state", in sectors of 512 bytes.
inline std::string PictureOf(const CopyMap& map) {
    std::string picture;
    map.ForEach([&](const Area& area) {
        picture += (picture.empty() ? "" : " ") + std::to_string(area.First / 512) + "+" +
                   std::to_string(area.Size / 512) + static_cast<char>(area.State);
    });
    return picture;
}

} // namespace thntfs::test
