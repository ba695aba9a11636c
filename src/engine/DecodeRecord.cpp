#include "engine/DecodeRecord.h"

#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/RunList.h"
#include "engine/SectorReader.h"
#include "platform/system/Dates.h"

#include <algorithm>
#include <new>
#include <vector>

namespace thntfs {

namespace {

constexpr std::size_t kMaxNames = 1024;             // of one file
constexpr std::uint64_t kNamespaceInAttribute = 89; // where it stands when the value starts at 24
constexpr std::uint32_t kMinIndexBytes = 40;        // an index root of this size holds no key

// A file has up to 1,024 links, each with a long and a short name. With the data, and the clusters of a list
// of 256 KiB, no driver writes a list that asks for more reads.
constexpr std::uint32_t kMaxReadsOfRecord = 3072;

// Each extension record belongs to one record and is read once for each name in it, of which it holds ten.
// Lists that ask for more share their records, and then each record gets no more than this.
constexpr std::uint64_t kMaxReadsOfRecordOnMedium = 16;
constexpr std::uint32_t kReadsWhereListsShare = 32;

// In the order of their records.
constexpr std::array<std::u16string_view, 11> kMetafileNames = {
    u"$MFT",    u"$MFTMirr", u"$LogFile", u"$Volume", u"$AttrDef", u".",
    u"$Bitmap", u"$Boot",    u"$BadClus", u"$Secure", u"$UpCase"};

bool FollowResidentList(ConstBytes record, const Attribute& list, DecodedEntry& entry) {
    bool result = false;
    WalkResidentList(record, list, [&](const AttributeListEntry& listEntry) {
        const std::uint32_t type = listEntry.Type();
        if (type == kTypeFileName) {
            result = ReadExtensionName(listEntry, entry);
            return result ? ListStep::GoOn : ListStep::End;
        }
        if (type == kTypeData && listEntry.StartVcn() == 0 && !listEntry.Named()) {
            result = ReadExtensionSize(listEntry, entry);
            return ListStep::End;
        }
        return type > kTypeData ? ListStep::End : ListStep::GoOn;
    });
    return result;
}

bool FollowAttributeList(ConstBytes record, const Attribute& list, DecodedEntry& entry) {
    if (list.NonResident() == 0) {
        return FollowResidentList(record, list, entry);
    }
    std::vector<MftExtent> runs;
    DecodeRunList(record, list.RunListStart(), runs);
    return DecodeFromListRuns(runs, entry);
}

// Handles one attribute; false ends the walk.
bool TakeAttribute(ConstBytes record, const Attribute& attribute, DecodedEntry& entry) {
    switch (attribute.Type()) {
    case kTypeEnd:
        return false;
    case kTypeStandardInformation:
        TakeStandardInformation(record, attribute, entry);
        return true;
    case kTypeAttributeList:
        // A folder's index root still lies ahead, behind the list.
        return FollowAttributeList(record, attribute, entry) && IsDirectory(record);
    case kTypeFileName:
        if (U8At(record, attribute.Offset() + kNamespaceInAttribute) != kNamespaceDos) {
            TakeName(record, attribute.ValueStart(), entry);
        }
        return true;
    case kTypeData:
        if (attribute.Named()) {
            return true;
        }
        entry.Size = attribute.NonResident() != 0 ? attribute.RealBytes() : attribute.ValueLength();
        return false;
    case kTypeIndexRoot:
        TakeNumberFromIndex(record, attribute, entry);
        return false;
    default:
        return true;
    }
}

std::uint32_t ReadsForOneRecord() {
    const std::uint64_t recordBytes = std::max(1U, Engine.VolumeParams.FileRecordBytes);
    return Engine.Lists.OfScan > MediumBytes() / recordBytes * kMaxReadsOfRecordOnMedium + kMaxReadsOfRecord
               ? kReadsWhereListsShare
               : kMaxReadsOfRecord;
}

// Reads and checks the record that a list entry names; empty where it can't be had.
std::vector<std::uint8_t> ReadListedRecord(const AttributeListEntry& listEntry) {
    const auto sector = FindRecordSector(listEntry.RecordNumber());
    if (!sector || !MayReadForList()) {
        return {};
    }
    std::vector<std::uint8_t> record(Engine.VolumeParams.FileRecordBytes);
    if (!ReadFileRecord(record, *sector)) {
        return {};
    }
    return record;
}

void TakeExtensionSize(const Attribute& data, DecodedEntry& entry) {
    if (data.NonResident() == 0) {
        // The low half alone is replaced.
        entry.Size = (entry.Size & 0xFFFFFFFF00000000U) | data.ValueLength();
    } else {
        entry.Size = data.RealBytes();
    }
}

// Each folder once, where its names come one behind the other.
void KeepFurtherParent(DecodedEntry& entry) {
    std::vector<std::uint32_t>& parents = entry.FurtherParents;
    if (parents.size() < kMaxNames && (parents.empty() || parents.back() != entry.ParentNumber)) {
        parents.push_back(entry.ParentNumber);
    }
}

bool HoldsFirstPiece(const Attribute& data) {
    if (data.NonResident() == 0) {
        return data.ValueLength() != 0;
    }
    return data.LastCluster() != ~std::uint64_t{0} && data.RealBytes() != 0 && data.FirstCluster() == 0;
}

} // namespace

void DecodedEntry::SetName(std::u16string_view name) {
    NameLength = static_cast<std::uint16_t>(std::min(name.size(), kNameUnits));
    std::copy_n(name.data(), NameLength, NameBuffer.data());
}

void TakeName(ConstBytes bytes, std::uint64_t valueStart, DecodedEntry& entry) {
    if (entry.NameLength != 0) {
        KeepFurtherParent(entry);
    }
    entry.ParentNumber = U32At(bytes, valueStart);
    entry.NameLength = U8At(bytes, valueStart + 64);
    const std::size_t nameBytes = std::size_t{2} * entry.NameLength;
    const ConstBytes units = Part(bytes, valueStart + 66, nameBytes);
    if (!units.empty()) {
        std::memcpy(entry.NameBuffer.data(), units.data(), units.size());
    }
    if (units.size() < nameBytes) {
        std::fill(entry.NameBuffer.begin() + static_cast<std::ptrdiff_t>(units.size() / 2),
                  entry.NameBuffer.begin() + entry.NameLength, u'\0');
    }
}

void TakeStandardInformation(ConstBytes record, const Attribute& attribute, DecodedEntry& entry) {
    const std::uint64_t value = attribute.ValueStart();
    entry.CreatedDate = DosDateOfFileTime(U64At(record, value));
    entry.AccessedDate = DosDateOfFileTime(U64At(record, value + 24));
    entry.Flags = CatalogueFlags(record, U16At(record, value + 32));
}

// Every child of a folder names the folder as its parent, so the first key of the index tells the folder's
// own number. It is the only source of that number in an older-form record.
void TakeNumberFromIndex(ConstBytes record, const Attribute& attribute, DecodedEntry& entry) {
    const std::uint64_t value = attribute.ValueStart();
    const std::uint32_t indexBytes = U32At(record, value + 20);
    if (U32At(record, value) == kTypeFileName && indexBytes == U32At(record, value + 24) &&
        indexBytes > kMinIndexBytes) {
        entry.RecordNumber = U32At(record, value + 48);
    }
}

std::uint16_t CatalogueFlags(ConstBytes record, std::uint16_t attributeBits) {
    std::uint16_t flags = attributeBits;
    if (IsInUse(record)) {
        flags |= kFlagLive;
    }
    if (IsDirectory(record)) {
        flags |= kFlagFolder;
    } else {
        flags &= static_cast<std::uint16_t>(~kFlagFolder);
    }
    return flags;
}

std::optional<std::uint32_t> MetafileNumber(std::u16string_view name) {
    if (name.empty() || (name.front() != u'$' && name.front() != u'.')) {
        return std::nullopt;
    }
    const auto* found = std::find(kMetafileNames.begin(), kMetafileNames.end(), name);
    return found == kMetafileNames.end()
               ? std::nullopt
               : std::optional(static_cast<std::uint32_t>(found - kMetafileNames.begin()));
}

bool MayReadForList() {
    ListReads& reads = Engine.Lists;
    if (reads.InScan && !JobMayGoOn()) {
        reads.Stopped = true;
        reads.Ended = true;
    }
    ++reads.OfScan;
    ++reads.OfRecord;
    reads.Ended = reads.Ended || reads.OfRecord > ReadsForOneRecord();
    return !reads.Ended;
}

bool DecodeFileRecord(ConstBytes record, DecodedEntry& entry) {
    Engine.Lists.BeginRecord();
    try {
        for (AttributeWalk walk(record); walk.Valid(); walk.Next()) {
            if (!TakeAttribute(record, walk.Current(), entry)) {
                break;
            }
        }
    } catch (const std::bad_alloc&) {
        // What has been decoded so far counts.
    }
    const bool stopped = Engine.Lists.Stopped && Engine.Lists.Ended;
    if (stopped || MetafileNumber(entry.Name()) || entry.RecordNumber == entry.ParentNumber) {
        entry.ClearName();
        return false;
    }
    return true;
}

std::optional<std::uint64_t> FindRecordSector(std::uint32_t recordNumber) {
    const VolumeParams& volume = Engine.VolumeParams;
    if (volume.SectorsPerFileRecord == 0) {
        return std::nullopt;
    }
    std::uint64_t before = 0;
    for (const MftExtent& extent : volume.MftExtents) {
        const std::uint32_t records = RecordsInExtent(extent);
        if (recordNumber - before < records) {
            return SectorOfCluster(extent.StartCluster) +
                   (recordNumber - before) * volume.SectorsPerFileRecord;
        }
        before += records;
        if (before > recordNumber) {
            break;
        }
    }
    return std::nullopt;
}

bool ReadFileRecord(Bytes record, std::uint64_t sector) {
    ReadSectorsCleared(record, sector);
    return CheckFileRecord(record, Engine.VolumeParams.FileRecordBytes, Engine.VolumeParams.BytesPerSector);
}

bool ReadExtensionName(const AttributeListEntry& listEntry, DecodedEntry& entry) try {
    bool result = false;
    const std::vector<std::uint8_t> record = ReadListedRecord(listEntry);
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() <= kTypeFileName; walk.Next()) {
        if (walk.Current().Type() == kTypeFileName) {
            TakeName(record, walk.Current().ValueStart(), entry);
            result = true;
        }
    }
    return result;
} catch (const std::bad_alloc&) {
    return false;
}

bool ReadExtensionSize(const AttributeListEntry& listEntry, DecodedEntry& entry) try {
    const std::vector<std::uint8_t> record = ReadListedRecord(listEntry);
    for (AttributeWalk walk(record); walk.Valid(); walk.Next()) {
        const Attribute attribute = walk.Current();
        if (attribute.Type() != kTypeData) {
            continue;
        }
        if (!HoldsFirstPiece(attribute)) {
            return false;
        }
        TakeExtensionSize(attribute, entry);
        return true;
    }
    return false;
} catch (const std::bad_alloc&) {
    return false;
}

bool DecodeFromListRuns(const std::vector<MftExtent>& runs, DecodedEntry& entry) {
    bool result = false;
    bool unread = false;
    const auto visit = [&](const AttributeListEntry& listEntry) {
        const std::uint32_t type = listEntry.Type();
        if (Engine.Lists.Ended || !IsValidType(type) || type > kTypeData) {
            return ListStep::End;
        }
        if (type == kTypeFileName) {
            result = ReadExtensionName(listEntry, entry);
        }
        if (type == kTypeData && listEntry.StartVcn() == 0 && !listEntry.Named()) {
            result = ReadExtensionSize(listEntry, entry);
            return ListStep::End;
        }
        return ListStep::GoOn;
    };
    try {
        WalkListRuns(runs, visit, [&](const ReadOutcome& outcome) {
            unread = unread || !outcome.BadSectors.empty();
            return !result && MayReadForList();
        });
    } catch (const std::bad_alloc&) {
        // What has been read so far counts.
    }
    Engine.Lists.Unread = unread && !result;
    return result;
}

} // namespace thntfs
