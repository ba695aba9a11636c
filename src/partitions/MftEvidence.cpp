#include "partitions/MftEvidence.h"

#include "engine/Attribute.h"
#include "engine/ClusterSize.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"

#include <bit>

namespace thntfs {

namespace {

// First cluster of an attribute's first run, low byte first and without a sign.
std::uint64_t FirstRunCluster(ConstBytes record, const Attribute& attribute) {
    const std::uint64_t run = attribute.RunListStart();
    const std::uint8_t header = U8At(record, run);
    const std::uint64_t lengthBytes = header & 0x0FU;
    const std::uint64_t clusterBytes = std::min<std::uint64_t>(header >> 4U, 8);
    std::uint64_t cluster = 0;
    for (std::uint64_t i = 0; i < clusterBytes; ++i) {
        cluster |= std::uint64_t{U8At(record, run + 1 + lengthBytes + i)} << (8 * i);
    }
    return cluster;
}

bool TakeFormatTime(ConstBytes record, const Attribute& attribute, MftEvidence& evidence) {
    const std::uint64_t value = attribute.ValueStart();
    evidence.FormatTime = U64At(record, value);
    for (const std::uint64_t at : {8U, 16U, 24U}) {
        if (U64At(record, value + at) != evidence.FormatTime) {
            return false;
        }
    }
    return true;
}

// A cluster's size follows from what the attribute takes on the medium and the clusters that it counts.
bool TakeClusterBytes(const Attribute& attribute, MftEvidence& evidence) {
    const std::uint64_t clusters = attribute.LastCluster() - attribute.FirstCluster() + 1;
    if (clusters == 0) {
        return false;
    }
    evidence.ClusterBytes = static_cast<std::uint32_t>(attribute.AllocatedBytes() / clusters);
    return (evidence.ClusterBytes & kLowNineBits) == 0;
}

bool TakeBitmap(ConstBytes record, const Attribute& attribute, MftEvidence& evidence) {
    if (evidence.DataCluster == 0) {
        evidence.DataCluster = FirstRunCluster(record, attribute) + 1;
    }
    return attribute.InitialisedBytes() == attribute.RealBytes() && TakeClusterBytes(attribute, evidence);
}

bool TakeMirrorData(ConstBytes record, const Attribute& attribute, MftEvidence& evidence) {
    evidence.DataCluster = FirstRunCluster(record, attribute);
    return attribute.AllocatedBytes() == attribute.InitialisedBytes() &&
           attribute.InitialisedBytes() == attribute.RealBytes() && TakeClusterBytes(attribute, evidence);
}

// Two FNV-1a sums with different starts: records with equal sums are taken for copies.
void HashContent(ConstBytes record, MftEvidence& evidence) {
    constexpr std::uint64_t kPrime = 0x100000001B3;
    std::uint64_t first = 0xCBF29CE484222325;
    std::uint64_t second = 0x9E3779B97F4A7C15;
    for (const std::uint8_t byte : record) {
        first = (first ^ byte) * kPrime;
        second = (second ^ byte) * 0xD6E8FEB86659FD93;
        second ^= second >> 29U;
    }
    evidence.ContentHash[0] = first;
    evidence.ContentHash[1] = second;
}

// Counts above 8 bits are cut to them, but for those that large clusters have.
std::uint32_t SectorsOfCluster(std::uint32_t clusterBytes, std::uint32_t sectorBytes) {
    const std::uint32_t sectors = clusterBytes / sectorBytes;
    return std::has_single_bit(sectors) && clusterBytes <= kMaxClusterBytes ? sectors : sectors & 0xFFU;
}

bool Complete(MftEvidence& evidence) {
    const std::uint32_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    evidence.SectorsPerRecord = static_cast<std::uint8_t>(evidence.RecordBytes / sectorBytes);
    evidence.SectorsPerCluster = SectorsOfCluster(evidence.ClusterBytes, sectorBytes);
    return evidence.SectorsPerRecord != 0 && evidence.SectorsPerCluster != 0;
}

using EvidenceReader = bool (*)(ConstBytes, MftEvidence&);

void Collect(ConstBytes checked, ConstBytes asItStands, std::uint64_t sector, EvidenceReader read,
             EvidenceList& list) {
    MftEvidence evidence;
    evidence.SectorNumber = sector;
    if (!read(checked, evidence) || !Complete(evidence)) {
        return;
    }
    if (list.size() == EvidenceCollector::kMaxEvidence) {
        Engine.SearchLimits |= kLimitEvidence;
        return;
    }
    HashContent(asItStands, evidence);
    list.push_back(evidence);
}

} // namespace

bool ReadMftEvidence(ConstBytes record, MftEvidence& evidence) {
    evidence.RecordBytes = BytesAllocated(record);
    for (AttributeWalk walk(record); walk.Valid(); walk.Next()) {
        const Attribute attribute = walk.Current();
        switch (attribute.Type()) {
        case kTypeEnd:
            return false;
        case kTypeStandardInformation:
            if (!TakeFormatTime(record, attribute, evidence)) {
                return false;
            }
            break;
        case kTypeData:
            evidence.DataCluster = FirstRunCluster(record, attribute);
            break;
        case kTypeBitmap:
            return TakeBitmap(record, attribute, evidence);
        default:
            break;
        }
    }
    return false;
}

bool ReadMirrEvidence(ConstBytes record, MftEvidence& evidence) {
    evidence.RecordBytes = BytesAllocated(record);
    for (AttributeWalk walk(record); walk.Valid(); walk.Next()) {
        const Attribute attribute = walk.Current();
        if (attribute.Type() == kTypeEnd) {
            return false;
        }
        if (attribute.Type() == kTypeStandardInformation && !TakeFormatTime(record, attribute, evidence)) {
            return false;
        }
        if (attribute.Type() == kTypeData) {
            return TakeMirrorData(record, attribute, evidence);
        }
    }
    return false;
}

// The second check meets a record that the first has fixed up. Only one that stays below one sector, the
// normal form of a mirror's record, passes it.
void EvidenceCollector::Examine(ConstBytes record, std::uint64_t sector) {
    checked_.assign(record.begin(), record.end());
    const auto bytes = static_cast<std::uint32_t>(record.size());
    if (IsMftRecord(checked_, bytes)) {
        Collect(checked_, record, sector, ReadMftEvidence, MftList);
    }
    if (IsMftMirrRecord(checked_, bytes)) {
        Collect(checked_, record, sector, ReadMirrEvidence, MirrList);
    }
}

} // namespace thntfs
