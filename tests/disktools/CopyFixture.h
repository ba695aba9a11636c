#pragma once

#include "disktools/CopyDisk.h"
#include "disktools/CopyMapFile.h"
#include "engine/EngineFixture.h"
#include "platform/files/File.h"
#include "platform/files/WorkFolder.h"

#include <cstdlib>
#include <functional>
#include <optional>
#include <unistd.h>

namespace thntfs::test {

/// A target in memory. What has not been synced would be lost if the machine stopped.
class MemoryTarget final : public File {
public:
    struct WriteRequest {
        std::uint64_t Offset = 0; ///< bytes
        std::uint64_t Size = 0;
    };

    ErrorCode Write(ConstBytes /*bytes*/) override { return kErrorInvalidParameter; }

    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) override {
        const ErrorCode code = OnCall ? OnCall() : kErrorNone;
        if (code == kErrorNone) {
            Put(offset, bytes);
            Writes.push_back({offset, bytes.size()});
        } else if (code != kErrorInvalidUserBuffer) {
            Put(offset, bytes.first(bytes.size() / 2));
        }
        return code;
    }

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got) override {
        got = offset < Content.size() ? std::min<std::size_t>(buffer.size(), Content.size() - offset) : 0;
        std::copy_n(Content.begin() + static_cast<std::ptrdiff_t>(offset), got, buffer.begin());
        return kErrorNone;
    }

    ErrorCode Size(std::uint64_t& bytes) override {
        bytes = Content.size();
        return kErrorNone;
    }

    ErrorCode Sync() override {
        const ErrorCode code = OnCall ? OnCall() : kErrorNone;
        if (code == kErrorNone) {
            Synced = Content;
        }
        return code;
    }

    void Clear() {
        Content.clear();
        Synced.clear();
        Writes.clear();
        OnCall = nullptr;
    }

    ByteVector Content;
    ByteVector Synced; ///< what the device has
    std::vector<WriteRequest> Writes;
    std::function<ErrorCode()> OnCall; ///< before each write and sync; its failure is theirs

private:
    void Put(std::uint64_t offset, ConstBytes bytes) {
        Content.resize(
            std::max<std::size_t>(Content.size(), static_cast<std::size_t>(offset) + bytes.size()));
        std::copy(bytes.begin(), bytes.end(), Content.begin() + static_cast<std::ptrdiff_t>(offset));
    }
};

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
inline ByteVector DiskBytes(std::uint64_t sectors, std::uint32_t sectorBytes = 512) {
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
        OpenDisk(MakeMemoryMedium(Original), sectorBytes);
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

    std::uint32_t Copy(CopyLedger* ledger = nullptr) {
        return CopyDisk(Target, Total(), kCopyTransferSectors, ledger);
    }
    std::uint32_t Resume(CopyLedger& ledger) {
        return ResumeCopy(Target, Total(), kCopyTransferSectors, ledger);
    }

    ByteVector Original;
    MemoryTarget Target;
};

/// The areas of a map as "first+size state", in sectors.
inline std::string PictureOf(const CopyMap& map, std::uint64_t sectorBytes = 512) {
    std::string picture;
    map.ForEach([&](const Area& area) {
        picture += (picture.empty() ? "" : " ") + std::to_string(area.First / sectorBytes) + "+" +
                   std::to_string(area.Size / sectorBytes) + static_cast<char>(area.State);
    });
    return picture;
}

} // namespace thntfs::test
