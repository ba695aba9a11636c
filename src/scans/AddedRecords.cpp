#include "scans/AddedRecords.h"

#include "engine/DecodeRecordExact.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/RecordTable.h"
#include "engine/SectorReader.h"
#include "scans/ConditionAccount.h"
#include "scans/RecordCataloguing.h"

namespace thntfs {

namespace {

// The records below belong to the volume itself.
constexpr std::uint32_t kFirstUserRecord = 16;

std::uint32_t NumberAt(ConstBytes record, const RecordPlace& place) {
    return UsaOffset(record) == kUsaOffsetNew ? OwnRecordNumber(record) : place.Number;
}

NameKind DecodeAt(ConstBytes record, const RecordPlace& place, DecodedEntry& entry) {
    const std::uint32_t number = NumberAt(record, place);
    const NameKind name = DecodeRecordExactly(record, number, entry);
    if (UsaOffset(record) == kUsaOffsetNew || entry.RecordNumber == 0) {
        entry.RecordNumber = number;
    }
    entry.RecordSector = place.Sector;
    return name;
}

// A record of the older form may have a guessed number; then its name tells more.
bool IsOfVolume(ConstBytes record, NameKind name, const DecodedEntry& entry) {
    if (UsaOffset(record) == kUsaOffsetOld && name == NameKind::Full) {
        return MetafileNumber(entry.Name()).has_value();
    }
    return entry.RecordNumber < kFirstUserRecord;
}

bool IsUsable(NameKind name, const DecodedEntry& entry) {
    return name == NameKind::Full && entry.ParentNumber != 0 && entry.ParentNumber != entry.RecordNumber;
}

} // namespace

bool ReadRecordAt(const RecordPlace& place, Bytes record) {
    return place.Split ? ReadTableRecord(place.Number, record) : ReadFileRecord(record, place.Sector);
}

void AddedRecords::NoteLeftOut(ConstBytes record, const RecordPlace& place, const Claim& claim) {
    const bool isOfVolume = UsaOffset(record) == kUsaOffsetNew && OwnRecordNumber(record) < kFirstUserRecord;
    if (isOfVolume || Engine.Lists.Stopped) {
        return;
    }
    DecodedEntry entry;
    const bool hasList = HasAttributeList(record);
    const NameKind name = hasList ? NameKind::None : DecodeAt(record, place, entry);
    if (reach_.Exact && (hasList || IsUsable(name, entry))) {
        again_.push_back({place, claim});
    } else if (hasList || !IsOfVolume(record, name, entry)) {
        WaitOrCount({place, claim});
    }
}

std::uint32_t AddedRecords::Take(ConstBytes record, const RecordPlace& place) {
    const Claim claim = conditions_.Take(record, place.Sector);
    return BaseReference(record) == 0 ? TakeBase(record, {place, claim}) : NumberAt(record, place);
}

std::uint32_t AddedRecords::TakeBase(ConstBytes record, const Waiting& waiting) {
    DecodedEntry entry;
    const NameKind name = DecodeAt(record, waiting.Place, entry);
    if (IsOfVolume(record, name, entry)) {
        return MetafileNumber(entry.Name()).value_or(entry.RecordNumber);
    }
    if (IsUsable(name, entry)) {
        Enter(entry, record, waiting.Claim);
    } else {
        WaitOrCount(waiting);
    }
    return entry.RecordNumber;
}

// What has no parent stands beside the lost folders.
void AddedRecords::TakeNameless(ConstBytes record, const Waiting& waiting) {
    DecodedEntry entry;
    DecodeAt(record, waiting.Place, entry);
    if (entry.ParentNumber == entry.RecordNumber) {
        entry.ParentNumber = 0;
    }
    Enter(entry, record, waiting.Claim);
}

void AddedRecords::Enter(DecodedEntry& entry, ConstBytes record, const Claim& claim) {
    CatalogueRecord(entry, IsDirectory(record), nextEntryId_);
    conditions_.Enter(claim, entry.EntryId);
}

void AddedRecords::WaitOrCount(const Waiting& waiting) {
    if (reach_.Deep) {
        nameless_.push_back(waiting);
    } else {
        ++Engine.Yield.LeftOut;
    }
}

template <typename Visit>
bool AddedRecords::ReadAgain(const std::vector<Waiting>& list, Visit visit) {
    std::vector<std::uint8_t> record(Engine.VolumeParams.FileRecordBytes);
    for (const Waiting& waiting : list) {
        if (!JobMayGoOn()) {
            return false;
        }
        if (ReadRecordAt(waiting.Place, record)) {
            visit(ConstBytes(record), waiting);
        }
    }
    return true;
}

bool AddedRecords::Finish() {
    return ReadAgain(again_, [this](ConstBytes record, const Waiting& one) { TakeBase(record, one); }) &&
           ReadAgain(nameless_, [this](ConstBytes record, const Waiting& one) { TakeNameless(record, one); });
}

} // namespace thntfs
