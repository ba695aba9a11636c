#include "disktools/CopiedContents.h"

#include "disktools/CopyDisk.h"
#include "engine/EngineState.h"
#include "engine/SectorReader.h"
#include "platform/files/File.h"

#include <algorithm>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint64_t kWholeBytes = std::uint64_t{1} << 20U;
constexpr std::uint64_t kSpreadSectors = 64;
constexpr unsigned kMaxFailedReads = 16; ///< each may take a failing disk half a minute

/// Sectors of the source that are compared in one go.
struct Stretch {
    std::uint64_t First = 0;
    std::uint64_t Count = 0;
};

class Comparison {
public:
    Comparison(File& image, const CopyMap& map)
        : image_(image)
        , map_(map) {}

    ContentCheck Run() {
        for (const Stretch& stretch : Wanted()) {
            if (MayGoOn()) {
                Compare(stretch);
            }
        }
        return result_;
    }

private:
    [[nodiscard]] bool MayGoOn() const {
        return !result_.Differs && result_.Code == kErrorNone && failedReads_ < kMaxFailedReads;
    }

    [[nodiscard]] std::vector<Stretch> Wanted() const {
        std::vector<Stretch> wanted;
        map_.ForEach([&](const Area& area) {
            if (area.State == AreaState::Read) {
                AddWhole(wanted, area);
            }
        });
        AddSpread(wanted);
        return wanted;
    }

    void AddWhole(std::vector<Stretch>& wanted, const Area& area) const {
        const std::uint64_t end = std::min(area.End(), kWholeBytes) / sectorBytes_;
        for (std::uint64_t first = (area.First + sectorBytes_ - 1) / sectorBytes_; first < end;
             first += kCopyTransferSectors) {
            wanted.push_back({first, std::min<std::uint64_t>(end - first, kCopyTransferSectors)});
        }
    }

    /// One sector from the middle of each 64th of what was read.
    void AddSpread(std::vector<Stretch>& wanted) const {
        const std::uint64_t sectors = map_.BytesOf(AreaState::Read) / sectorBytes_;
        std::uint64_t before = 0; // sectors read in front of the area
        std::uint64_t number = 0;
        map_.ForEach([&](const Area& area) {
            if (area.State != AreaState::Read) {
                return;
            }
            const std::uint64_t count = area.Size / sectorBytes_;
            for (; number < kSpreadSectors && PlaceOf(number, sectors) < before + count; ++number) {
                wanted.push_back({area.First / sectorBytes_ + PlaceOf(number, sectors) - before, 1});
            }
            before += count;
        });
    }

    static std::uint64_t PlaceOf(std::uint64_t number, std::uint64_t sectors) {
        return sectors / kSpreadSectors * number + sectors / kSpreadSectors / 2;
    }

    void Compare(const Stretch& stretch) {
        source_.resize(static_cast<std::size_t>(stretch.Count * sectorBytes_));
        if (TryReadSectors(source_, stretch.First)) {
            CompareRead(stretch);
        } else if (stretch.Count == 1) {
            ++failedReads_;
        } else {
            for (std::uint64_t i = 0; i < stretch.Count && MayGoOn(); ++i) {
                Compare({stretch.First + i, 1});
            }
        }
    }

    void CompareRead(const Stretch& stretch) {
        copied_.resize(source_.size());
        std::size_t got = 0;
        result_.Code = image_.ReadAt(stretch.First * sectorBytes_, copied_, got);
        if (result_.Code != kErrorNone) {
            return;
        }
        std::fill(copied_.begin() + static_cast<std::ptrdiff_t>(got), copied_.end(), std::uint8_t{0});
        if (stretch.First == 0) { // an image that another copier began isn't stamped
            StampFirstSector(source_);
            StampFirstSector(copied_);
        }
        const auto other = std::mismatch(source_.begin(), source_.end(), copied_.begin()).first;
        if (other != source_.end()) {
            result_.Differs =
                stretch.First + static_cast<std::uint64_t>(other - source_.begin()) / sectorBytes_;
        }
        result_.Compared += stretch.Count;
    }

    File& image_;
    const CopyMap& map_;
    std::uint64_t sectorBytes_ = Engine.SourceDisk.BytesPerSector;
    std::vector<std::uint8_t> source_;
    std::vector<std::uint8_t> copied_;
    unsigned failedReads_ = 0;
    ContentCheck result_;
};

} // namespace

ContentCheck CompareCopied(File& image, const CopyMap& map) { return Comparison(image, map).Run(); }

} // namespace thntfs
