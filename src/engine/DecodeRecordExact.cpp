#include "engine/DecodeRecordExact.h"

#include "engine/AttributePieces.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/RecordTable.h"

#include <new>
#include <set>
#include <vector>

namespace thntfs {

namespace {

/// Gathers an entry from the records of one file.
class ExactDecoder {
public:
    ExactDecoder(ConstBytes base, std::uint32_t number, DecodedEntry& entry)
        : base_(base)
        , number_(number)
        , entry_(entry) {
        entry_.Flags = CatalogueFlags(base, 0);
    }

    NameKind Decode() {
        TakeBase();
        for (const std::uint64_t number : extensions_) {
            TakeExtension(number);
        }
        return name_;
    }

private:
    void TakeBase();
    void TakeAttributes(ConstBytes record);
    void TakeAttribute(ConstBytes record, const Attribute& attribute);
    void TakeFileName(ConstBytes record, const Attribute& attribute);
    void TakeSize(const Attribute& data);
    void TakeList(const Attribute& list);
    void TakeExtension(std::uint64_t number);
    [[nodiscard]] bool IsExtension(ConstBytes record) const;

    ConstBytes base_;
    std::uint32_t number_;
    DecodedEntry& entry_;
    NameKind name_ = NameKind::None;
    std::vector<std::uint64_t> extensions_;
};

void ExactDecoder::TakeBase() {
    TakeAttributes(base_);
    for (AttributeWalk walk(base_); walk.Valid() && walk.Current().Type() <= kTypeAttributeList;
         walk.Next()) {
        if (walk.Current().Type() == kTypeStandardInformation) {
            TakeStandardInformation(base_, walk.Current(), entry_);
        } else if (walk.Current().Type() == kTypeAttributeList) {
            TakeList(walk.Current());
        }
    }
}

void ExactDecoder::TakeAttributes(ConstBytes record) {
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() != kTypeEnd; walk.Next()) {
        TakeAttribute(record, walk.Current());
    }
}

void ExactDecoder::TakeAttribute(ConstBytes record, const Attribute& attribute) {
    switch (attribute.Type()) {
    case kTypeFileName:
        TakeFileName(record, attribute);
        break;
    case kTypeData:
        TakeSize(attribute);
        break;
    case kTypeIndexRoot:
        TakeNumberFromIndex(record, attribute, entry_);
        break;
    default:
        break;
    }
}

void ExactDecoder::TakeFileName(ConstBytes record, const Attribute& attribute) {
    if (attribute.NonResident() != 0) {
        return;
    }
    const std::uint64_t value = attribute.ValueStart();
    const NameKind kind = U8At(record, value + 65) == kNamespaceDos ? NameKind::Short : NameKind::Full;
    if (kind >= name_ && U8At(record, value + 64) != 0) {
        TakeName(record, value, entry_);
        name_ = kind;
    }
}

void ExactDecoder::TakeSize(const Attribute& data) {
    if (data.Named()) {
        return;
    }
    if (data.NonResident() == 0) {
        entry_.Size = data.ValueLength();
    } else if (data.FirstCluster() == 0) {
        entry_.Size = data.RealBytes();
    }
}

// Reading a long list costs as much as reading the records that it would fill.
void ExactDecoder::TakeList(const Attribute& list) {
    bool whole = true;
    const std::vector<std::uint8_t> value = ReadListValue(base_, list, whole);
    for (std::size_t at = 0; at < value.size(); at += base_.size()) {
        if (!MayReadForList()) {
            return;
        }
    }
    std::set<std::uint64_t> seen{number_};
    for (const ListedPiece& piece : ListedPieces(value, whole)) {
        const bool wanted = piece.Type == kTypeFileName || piece.Type == kTypeIndexRoot ||
                            (piece.Type == kTypeData && piece.Name.empty() && piece.FirstVcn == 0);
        if (wanted && seen.insert(NumberOf(piece.Reference)).second) {
            extensions_.push_back(NumberOf(piece.Reference));
        }
    }
}

void ExactDecoder::TakeExtension(std::uint64_t number) {
    std::vector<std::uint8_t> record(Engine.VolumeParams.FileRecordBytes);
    const auto fits = [this](ConstBytes found) { return IsExtension(found); };
    if (MayReadForList() && ReadTableRecord(number, record, fits)) {
        TakeAttributes(record);
    }
}

// A record that is deleted gets the next sequence number; its extension records still say the one before.
bool ExactDecoder::IsExtension(ConstBytes record) const {
    const std::uint64_t base = BaseReference(record);
    const std::uint16_t sequence = RecordSequence(base_);
    const bool before = !IsInUse(base_) && SequenceOf(base) == static_cast<std::uint16_t>(sequence - 1);
    return NumberOf(base) == number_ && (SequenceOf(base) == sequence || before);
}

} // namespace

NameKind DecodeRecordExactly(ConstBytes record, std::uint32_t number, DecodedEntry& entry) try {
    Engine.Lists.BeginRecord();
    return ExactDecoder(record, number, entry).Decode();
} catch (const std::bad_alloc&) {
    return NameKind::None;
}

} // namespace thntfs
