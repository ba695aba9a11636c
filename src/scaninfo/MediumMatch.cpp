#include "scaninfo/MediumMatch.h"

#include "catalogue/CatalogueReader.h"
#include "engine/DecodeRecord.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/SectorReader.h"
#include "partitions/BootSector.h"
#include "platform/system/Text.h"

#include <algorithm>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint64_t kRecordsLookedAt = 64;
constexpr std::uint64_t kTries = 16;    // of entries in a row, since lost folders have no record
constexpr unsigned kMaxFailedReads = 8; // of a dying disk each may take its time

enum class RecordMatch { Same, Different, Unknown };

// A search takes a volume's size from its boot sector, a partition table has its own.
bool SizeIsOfBootSector() {
    for (const PartitionCandidate& candidate : Engine.SourceDisk.Partitions) {
        if (candidate.StartSector == Engine.VolumeParams.StartSector) {
            return (candidate.EvidenceFlags & kEvidenceBootSector) != 0;
        }
    }
    return false;
}

BootMatch CompareBootSector(ConstBytes sector) {
    if (!IsNtfsBootSector(sector)) {
        return BootMatch::Other;
    }
    const VolumeParams& volume = Engine.VolumeParams;
    PartitionCandidate now;
    DecodeFoundBootSector(sector, volume.StartSector, now);
    const bool same = now.VolumeSerial == volume.VolumeSerial && now.MftCluster == volume.MftCluster &&
                      now.MftMirrCluster == volume.MftMirrCluster &&
                      (now.TotalSectors == volume.TotalSectors || !SizeIsOfBootSector());
    return same ? BootMatch::Same : BootMatch::Other;
}

// A volume without a serial number was found by its records alone.
BootMatch MatchBootSector() {
    if (Engine.VolumeParams.VolumeSerial == 0) {
        return BootMatch::Unknown;
    }
    std::vector<std::uint8_t> sector(
        std::max<std::size_t>(Engine.SourceDisk.BytesPerSector, kBootSectorBytes));
    return TryReadSectors(sector, Engine.VolumeParams.StartSector) ? CompareBootSector(sector)
                                                                   : BootMatch::Unknown;
}

// Entries behind which a record stands, spread over the catalogue, by rising sector.
std::vector<CatalogueItem> ChooseEntries() {
    const std::uint64_t count = CatalogueEntryCount();
    const std::uint64_t wanted = std::min(count, kRecordsLookedAt);
    std::vector<CatalogueItem> chosen;
    for (std::uint64_t i = 0; i < wanted; ++i) {
        const std::uint64_t begin = i * count / wanted;
        const std::uint64_t end = std::min((i + 1) * count / wanted, begin + kTries);
        CatalogueItem item;
        for (std::uint64_t id = begin; id < end && item.RecordSector == 0; ++id) {
            if (LoadEntryInto(static_cast<std::uint32_t>(id), item) == 0) {
                return chosen;
            }
        }
        if (item.RecordSector != 0) {
            chosen.push_back(std::move(item));
        }
    }
    std::sort(chosen.begin(), chosen.end(), [](const CatalogueItem& left, const CatalogueItem& right) {
        return left.RecordSector < right.RecordSector;
    });
    return chosen;
}

// A record whose names have gone to another one, by its attribute list, tells nothing by itself.
RecordMatch CompareRecord(Bytes record, const CatalogueItem& item) {
    const VolumeParams& volume = Engine.VolumeParams;
    if (!CheckFileRecord(record, volume.FileRecordBytes, volume.BytesPerSector)) {
        return RecordMatch::Different;
    }
    bool hasList = false;
    bool hasName = false;
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() <= kTypeFileName; walk.Next()) {
        hasList = hasList || walk.Current().Type() == kTypeAttributeList;
        if (walk.Current().Type() == kTypeFileName) {
            DecodedEntry now;
            TakeName(record, walk.Current().ValueStart(), now);
            if (now.Name() == item.Name) {
                return RecordMatch::Same;
            }
            hasName = true;
        }
    }
    if (!hasName && item.Name == WideText("#" + std::to_string(item.RecordNumber))) {
        return RecordMatch::Same;
    }
    return hasList ? RecordMatch::Unknown : RecordMatch::Different;
}

class RecordComparison {
public:
    RecordMatch Compare(const CatalogueItem& item) {
        record_.assign(Engine.VolumeParams.FileRecordBytes, 0);
        if (failedReads_ == kMaxFailedReads || record_.empty()) {
            return RecordMatch::Unknown;
        }
        if (!TryReadSectors(record_, item.RecordSector)) {
            ++failedReads_;
            return RecordMatch::Unknown;
        }
        return CompareRecord(record_, item);
    }

private:
    std::vector<std::uint8_t> record_;
    unsigned failedReads_ = 0;
};

} // namespace

MediumMatch MatchMedium() {
    MediumMatch match;
    match.Boot = MatchBootSector();
    RecordComparison comparison;
    for (const CatalogueItem& item : ChooseEntries()) {
        const RecordMatch record = comparison.Compare(item);
        ++match.Records;
        match.Different += record == RecordMatch::Different ? 1U : 0U;
        match.Unknown += record == RecordMatch::Unknown ? 1U : 0U;
    }
    return match;
}

std::string MediumMatchText(const MediumMatch& match) {
    if (match.IsWhole()) {
        return {};
    }
    std::string text;
    if (match.Boot == BootMatch::Other) {
        text = "Where the scanned volume's boot sector stood, there is another one, or none. ";
    }
    if (match.Different != 0) {
        text += "Of " + std::to_string(match.Records - match.Unknown) +
                " file records that were looked at, " + std::to_string(match.Different) +
                " no longer hold the file that was found there. ";
    }
    return text + (match.NeedsConsent()
                       ? "It seems to be another medium, or to have been formatted since the scan: files "
                         "saved from it may have wrong bytes under right names."
                       : "The volume has been written to since the scan: files that are gone from it may "
                         "come with wrong bytes.");
}

} // namespace thntfs
