#include "content/ExactFile.h"

#include "content/RunStream.h"
#include "content/SystemStream.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/RecordTable.h"
#include "engine/SectorReader.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::uint32_t kTypeReparsePoint = 0xC0;
constexpr std::uint8_t kNamespaceOfDos = 2;
constexpr std::uint64_t kNameUnitsAt = 66; // in the value of a file name
constexpr unsigned kMaxUnfit = 256;        // then a list leads to nothing but damage

// A reparse point of a file that the system has compressed: who has done so, and how.
constexpr std::u16string_view kSystemStream = u"WofCompressedData";
constexpr std::uint64_t kProviderAt = 12;
constexpr std::uint64_t kFormatAt = 20;
constexpr std::uint32_t kProviderFile = 2; // another keeps the data in an archive elsewhere
constexpr auto kLastFormat = static_cast<std::uint32_t>(SystemFormat::Xpress16K);

constexpr std::uint32_t kReparseDeduplicated = 0x80000013;
constexpr std::uint32_t kReparseCloud = 0x9000001A;
constexpr std::uint32_t kReparseCloudMask = 0xFFFF0FFF;

// Where clusters are smaller than records, a record may go on in another run of the table.
bool ReadRecordOf(const CatalogueItem& item, Bytes record) {
    const VolumeParams& volume = Engine.VolumeParams;
    if (volume.ClusterBytes < volume.FileRecordBytes) {
        const std::vector<SectorRange> ranges = TableRecordRanges(item.RecordNumber);
        if (ranges.size() > 1 && ranges.front().First == item.RecordSector) {
            return ReadTableRecord(item.RecordNumber, record);
        }
    }
    ReadSectorsCleared(record, item.RecordSector);
    return CheckFileRecord(record, volume.FileRecordBytes, volume.BytesPerSector) &&
           MayHaveNumber(record, item.RecordNumber);
}

// Reads along the attributes of a record, up to its end mark.
template <typename Visitor>
void VisitAttributes(ConstBytes record, const Visitor& visit) {
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() != kTypeEnd; walk.Next()) {
        visit(walk.Current());
    }
}

bool IsOf(ConstBytes record, const Attribute& attribute, std::uint32_t type, std::u16string_view name) {
    return attribute.Type() == type && AttributeName(record, attribute) == name;
}

std::unique_ptr<ExactStream> StreamOf(StreamLayout layout) {
    if (layout.Resident) {
        return std::make_unique<ResidentStream>(std::move(layout));
    }
    if (layout.UnitClusters != 0) {
        return std::make_unique<CompressedStream>(std::move(layout));
    }
    return std::make_unique<RunStream>(std::move(layout));
}

bool AddOnce(std::vector<std::u16string>& names, std::u16string name) {
    if (std::find(names.begin(), names.end(), name) != names.end()) {
        return false;
    }
    names.push_back(std::move(name));
    return true;
}

} // namespace

bool ExactFile::Open(const CatalogueItem& item) {
    item_ = item;
    list_.clear();
    extensions_.clear();
    hasList_ = false;
    listWhole_ = true;
    unfit_ = 0;
    record_.resize(Engine.VolumeParams.FileRecordBytes);
    if (!ReadRecordOf(item, record_)) {
        return false;
    }
    ReadList();
    return true;
}

void ExactFile::ReadList() {
    VisitAttributes(record_, [this](const Attribute& attribute) {
        if (attribute.Type() == kTypeAttributeList && !hasList_) {
            hasList_ = true;
            const std::vector<std::uint8_t> value = ReadListValue(record_, attribute, listWhole_);
            list_ = ListedPieces(value, listWhole_);
        }
    });
}

// Empty where the record can't be had.
ConstBytes ExactFile::RecordOf(std::uint64_t reference) {
    if (static_cast<std::uint32_t>(NumberOf(reference)) == item_.RecordNumber) {
        return record_;
    }
    const auto [place, isNew] = extensions_.try_emplace(reference);
    if (isNew) {
        LoadExtension(reference, place->second);
    }
    return place->second.Record;
}

void ExactFile::LoadExtension(std::uint64_t reference, Extension& extension) {
    if (unfit_ < kMaxUnfit && (!mayGoOn_ || mayGoOn_())) {
        extension.Record.resize(record_.size());
        const auto fits = [&](ConstBytes record) {
            const bool own = IsOwnExtension(record, reference);
            extension.Foreign = !own;
            return own;
        };
        if (ReadTableRecord(NumberOf(reference), extension.Record, fits)) {
            return;
        }
    }
    ++unfit_;
    extension.Record = {};
}

bool ExactFile::IsOwnExtension(ConstBytes record, std::uint64_t reference) const {
    const std::uint64_t base = BaseReference(record);
    return base != 0 && static_cast<std::uint32_t>(NumberOf(base)) == item_.RecordNumber &&
           SequenceFits(record_, SequenceOf(base)) && SequenceFits(record, SequenceOf(reference));
}

AttributePieceList ExactFile::FindPieces(std::uint32_t type, std::u16string_view name, Doubts& doubts) {
    AttributePieceList pieces;
    if (hasList_) {
        FindListedPieces(type, name, pieces, doubts);
    }
    if (!listWhole_) {
        doubts.Add(Doubt::ListDamaged);
    }
    if (pieces.empty()) {
        FindInOwnRecord(type, name, pieces);
    }
    return pieces;
}

void ExactFile::FindInOwnRecord(std::uint32_t type, std::u16string_view name,
                                AttributePieceList& pieces) const {
    VisitAttributes(record_, [&](const Attribute& attribute) {
        if (IsOf(record_, attribute, type, name)) {
            pieces.emplace_back(record_, attribute);
        }
    });
}

void ExactFile::FindListedPieces(std::uint32_t type, std::u16string_view name, AttributePieceList& pieces,
                                 Doubts& doubts) {
    for (const ListedPiece& listed : list_) {
        if (listed.Type != type || listed.Name != name) {
            continue;
        }
        const ConstBytes record = RecordOf(listed.Reference);
        const auto attribute = FindListed(record, listed);
        if (attribute) {
            pieces.emplace_back(record, *attribute);
        } else {
            const auto extension = extensions_.find(listed.Reference);
            const bool foreign = extension != extensions_.end() && extension->second.Foreign;
            doubts.Add(foreign ? Doubt::PieceForeign : Doubt::PieceMissing);
        }
    }
}

// Of a file whose list is damaged nobody knows that it has no content.
std::optional<StreamLayout> ExactFile::LayoutOf(std::u16string_view name) {
    Doubts doubts;
    AttributePieceList pieces = FindPieces(kTypeData, name, doubts);
    const bool missing = doubts.Has(Doubt::PieceForeign) || doubts.Has(Doubt::PieceMissing);
    const std::uint64_t sizeWanted = name.empty() ? item_.Size : 0;
    if (pieces.empty() && !missing && !(name.empty() && doubts.Has(Doubt::ListDamaged))) {
        return std::nullopt;
    }
    StreamLayout layout =
        pieces.empty() ? EmptyLayout(sizeWanted) : MakeLayout(std::move(pieces), sizeWanted, !missing);
    layout.Doubtful.Add(doubts);
    return layout;
}

std::unique_ptr<ExactStream> ExactFile::OpenStream(std::u16string_view name) {
    std::optional<StreamLayout> layout = LayoutOf(name);
    if (!layout) {
        return nullptr;
    }
    if (name.empty() && ReparseTag() != 0) {
        if (std::unique_ptr<ExactStream> plain = OpenSystemCompressed(layout->Size)) {
            return plain;
        }
        DoubtPointer(*layout);
    }
    return StreamOf(std::move(*layout));
}

// Null where the system hasn't compressed the file, or in a way that can't be read.
std::unique_ptr<ExactStream> ExactFile::OpenSystemCompressed(std::uint64_t size) {
    const ConstBytes point = ReparsePoint();
    const std::uint32_t number = U32At(point, kFormatAt);
    if (!CanReadSystemFormats() || U32At(point, 0) != kReparseSystemCompressed ||
        U32At(point, kProviderAt) != kProviderFile || point.size() < kFormatAt + 4 || number > kLastFormat) {
        return nullptr;
    }
    const auto format = static_cast<SystemFormat>(number);
    std::optional<StreamLayout> stored = LayoutOf(kSystemStream);
    std::unique_ptr<ExactStream> stream = stored ? StreamOf(std::move(*stored)) : nullptr;
    if (stream == nullptr || !SystemStream::Fits(size, format, *stream)) {
        return nullptr;
    }
    return std::make_unique<SystemStream>(size, format, std::move(stream));
}

// What a reparse point stands for isn't in the file's own data.
void ExactFile::DoubtPointer(StreamLayout& layout) {
    const ConstBytes point = ReparsePoint();
    const std::uint32_t tag = ReparseTag();
    const bool holes =
        !layout.Resident && layout.Runs.AllocatedClusters() * layout.ClusterBytes < layout.Size;
    if (tag == kReparseSystemCompressed && U32At(point, kProviderAt) == kProviderFile) {
        layout.Doubtful.Add(CanReadSystemFormats() ? Doubt::DataDamaged : Doubt::SystemCompressed);
    } else if (tag == kReparseSystemCompressed || tag == kReparseDeduplicated ||
               ((tag & kReparseCloudMask) == kReparseCloud && holes)) {
        layout.Doubtful.Add(Doubt::Elsewhere);
    }
}

std::vector<std::u16string> ExactFile::StreamNames() const {
    std::vector<std::u16string> names;
    for (const ListedPiece& listed : list_) {
        if (listed.Type == kTypeData) {
            AddOnce(names, listed.Name);
        }
    }
    VisitAttributes(record_, [&](const Attribute& attribute) {
        if (attribute.Type() == kTypeData) {
            AddOnce(names, AttributeName(record_, attribute));
        }
    });
    std::stable_partition(names.begin(), names.end(), [](const auto& name) { return name.empty(); });
    return names;
}

std::vector<ExactStreamInfo> ExactFile::Streams() {
    std::vector<ExactStreamInfo> streams;
    const bool systemCompressed = ReparseTag() == kReparseSystemCompressed;
    for (const std::u16string& name : StreamNames()) {
        const auto layout = systemCompressed && name == kSystemStream ? std::nullopt : LayoutOf(name);
        if (layout) {
            streams.push_back({name, layout->Size});
        }
    }
    return streams;
}

std::optional<ExactPlace> ExactFile::Place() {
    const auto layout = LayoutOf({});
    if (!layout) {
        return std::nullopt;
    }
    ExactPlace place{.InRecord = layout->Resident};
    for (const MapRun& run : layout->Runs.Runs()) {
        if (!run.Hole) {
            place.FirstCluster = place.Runs++ == 0 ? run.Lcn : place.FirstCluster;
        }
    }
    return place;
}

std::vector<ExactName> ExactFile::Names() {
    std::vector<ExactName> names;
    Doubts doubts;
    for (const auto& [record, attribute] : FindPieces(kTypeFileName, {}, doubts)) {
        const ConstBytes value = attribute.Value();
        if (value.size() > kNameUnitsAt && U8At(value, 65) != kNamespaceOfDos) {
            names.push_back({U64At(value, 0), UnitsAt(value, kNameUnitsAt, U8At(value, 64))});
        }
    }
    return names;
}

ExactTimes ExactFile::Times() const {
    AttributePieceList found;
    FindInOwnRecord(kTypeStandardInformation, {}, found);
    if (found.empty()) {
        return {};
    }
    const ConstBytes value = found.front().second.Value();
    return {U64At(value, 0), U64At(value, 8), U64At(value, 16), U64At(value, 24)};
}

std::uint32_t ExactFile::AttributeBits() const {
    AttributePieceList found;
    FindInOwnRecord(kTypeStandardInformation, {}, found);
    return found.empty() ? 0 : U32At(found.front().second.Value(), 32);
}

ConstBytes ExactFile::ReparsePoint() {
    Doubts doubts;
    const AttributePieceList found = FindPieces(kTypeReparsePoint, {}, doubts);
    return found.empty() || found.front().second.NonResident() != 0 ? ConstBytes()
                                                                    : found.front().second.Value();
}

std::uint32_t ExactFile::ReparseTag() { return U32At(ReparsePoint(), 0); }

bool ExactFile::IsFolder() const { return IsDirectory(record_); }

} // namespace thntfs
