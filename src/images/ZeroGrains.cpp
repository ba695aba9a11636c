#include "images/ZeroGrains.h"

#include "images/ImageFault.h"
#include "images/StoredNumber.h"
#include "images/VmdkHeader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint32_t kMostTableEntries = 1U << 16U;
constexpr std::uint64_t kMostGrainSectors = 1U << 16U;
constexpr std::uint64_t kMostTables = 1U << 24U;
constexpr std::uint32_t kZeroGrain = 1;
using GrainEntry = std::uint32_t;

class ExtentWithZeroes final : public Medium {
public:
    ExtentWithZeroes(std::unique_ptr<Medium> file, const VmdkHeader& header)
        : file_(std::move(file))
        , header_(header)
        , zeroSector_((file_->SizeBytes() + kVmdkSectorBytes - 1) / kVmdkSectorBytes + header.GrainSectors) {
        AddTables(header.DirectorySector);
        if ((header.Flags & kVmdkCopyOfTables) != 0) {
            AddTables(header.CopySector);
        }
        std::sort(tables_.begin(), tables_.end());
    }

    // Between the file's end and the zeros is a gap, so that a grain that is cut off doesn't run into them.
    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override {
        if (offset >= zeroSector_ * kVmdkSectorBytes) {
            std::fill(buffer.begin(), buffer.end(), std::uint8_t{0});
            return kErrorNone;
        }
        const std::uint64_t fileBytes = file_->SizeBytes();
        if (buffer.size() > fileBytes - std::min(offset, fileBytes)) {
            return kErrorCrc;
        }
        const ErrorCode code = file_->ReadAt(offset, buffer);
        if (code == kErrorNone) {
            Translate(offset, buffer);
        }
        return code;
    }

    [[nodiscard]] std::uint64_t SizeBytes() const override {
        return (zeroSector_ + header_.GrainSectors) * kVmdkSectorBytes;
    }
    [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return 0; }

private:
    [[nodiscard]] std::uint64_t TableBytes() const { return header_.TableEntries * sizeof(GrainEntry); }

    void AddTables(std::uint64_t directorySector) {
        const std::uint64_t tableSectors = header_.GrainSectors * header_.TableEntries;
        const std::uint64_t count =
            header_.Capacity / tableSectors + (header_.Capacity % tableSectors != 0 ? 1 : 0);
        if (count > kMostTables || count * sizeof(GrainEntry) > file_->SizeBytes()) {
            throw DamagedImage(ImageKind::Vmdk);
        }
        std::vector<std::uint8_t> directory(count * sizeof(GrainEntry));
        if (file_->ReadAt(directorySector * kVmdkSectorBytes, directory) != kErrorNone) {
            throw DamagedImage(ImageKind::Vmdk);
        }
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint64_t sector = LittleNumberAt<GrainEntry>(directory, i * sizeof(GrainEntry));
            if (sector != 0) {
                tables_.push_back(sector * kVmdkSectorBytes);
            }
        }
    }

    void Translate(std::uint64_t offset, Bytes read) {
        const std::uint64_t end = offset + read.size();
        const std::uint64_t before = offset - std::min(offset, TableBytes());
        for (auto table = std::upper_bound(tables_.begin(), tables_.end(), before);
             table != tables_.end() && *table < end; ++table) {
            TranslateTable(*table, offset, read);
        }
    }

    // Only whole entries: the library reads a table as a whole.
    void TranslateTable(std::uint64_t table, std::uint64_t offset, Bytes read) const {
        for (std::uint64_t place = table; place < table + TableBytes(); place += sizeof(GrainEntry)) {
            if (place < offset || place + sizeof(GrainEntry) > offset + read.size()) {
                continue;
            }
            const auto at = static_cast<std::size_t>(place - offset);
            if (LittleNumberAt<GrainEntry>(read, at) == kZeroGrain) {
                const auto zero = static_cast<GrainEntry>(zeroSector_);
                std::memcpy(read.data() + at, &zero, sizeof(zero));
            }
        }
    }

    std::unique_ptr<Medium> file_;
    VmdkHeader header_;
    std::uint64_t zeroSector_;
    std::vector<std::uint64_t> tables_; ///< byte offsets, rising
};

bool HasLikelySizes(const VmdkHeader& header) {
    return header.GrainSectors != 0 && header.GrainSectors <= kMostGrainSectors && header.TableEntries != 0 &&
           header.TableEntries <= kMostTableEntries;
}

bool CanBeFollowed(const VmdkHeader& header, std::uint64_t fileBytes) {
    return header.DirectorySector != kVmdkDirectoryAtEnd && header.DirectorySector < fileBytes &&
           header.CopySector < fileBytes && fileBytes / kVmdkSectorBytes < ~GrainEntry{0} - kMostGrainSectors;
}

} // namespace

VmdkHeader ReadVmdkHeader(Medium& extent) {
    std::array<std::uint8_t, 512> head{};
    VmdkHeader header;
    if (extent.ReadAt(0, head) != kErrorNone || std::memcmp(head.data(), "KDMV", 4) != 0) {
        return header;
    }
    header.IsSparse = true;
    header.Flags = LittleNumberAt<std::uint32_t>(head, 8);
    header.Capacity = LittleNumberAt<std::uint64_t>(head, 12);
    header.GrainSectors = LittleNumberAt<std::uint64_t>(head, 20);
    header.DescriptorSector = LittleNumberAt<std::uint64_t>(head, 28);
    header.TableEntries = LittleNumberAt<std::uint32_t>(head, 44);
    header.CopySector = LittleNumberAt<std::uint64_t>(head, 48);
    header.DirectorySector = LittleNumberAt<std::uint64_t>(head, 56);
    return header;
}

std::unique_ptr<Medium> ShowZeroGrains(std::unique_ptr<Medium> extent) {
    const VmdkHeader header = ReadVmdkHeader(*extent);
    if (!header.IsSparse) {
        return extent;
    }
    const bool hasZeroGrains = (header.Flags & kVmdkZeroGrains) != 0;
    if (!HasLikelySizes(header) || (hasZeroGrains && !CanBeFollowed(header, extent->SizeBytes()))) {
        throw DamagedImage(ImageKind::Vmdk);
    }
    if (!hasZeroGrains) {
        return extent;
    }
    return std::make_unique<ExtentWithZeroes>(std::move(extent), header);
}

} // namespace thntfs
