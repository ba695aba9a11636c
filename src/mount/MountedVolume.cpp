#include "mount/MountedVolume.h"

#include "catalogue/CatalogueReader.h"
#include "catalogue/Conditions.h"
#include "content/StreamWriter.h"
#include "engine/EngineState.h"
#include "platform/system/Text.h"

#include <algorithm>

namespace thntfs {

namespace {

using Node = MountIndex::Node;

constexpr std::string_view kUserPrefix = "user.";
constexpr std::string_view kConditionName = "user.th-ntfs.condition";
constexpr std::string_view kDeletedName = "user.th-ntfs.deleted";
constexpr std::string_view kDoubtsName = "user.th-ntfs.doubts";
constexpr std::size_t kMaxAttributeName = 255;

// Doubts under which a hole may stand for data whose place isn't known.
bool LeavesGaps(const Doubts& doubts) {
    for (const Doubt doubt :
         {Doubt::ListDamaged, Doubt::PieceMissing, Doubt::PieceForeign, Doubt::RunsDamaged,
          Doubt::RunsMissing, Doubt::SystemCompressed, Doubt::Elsewhere, Doubt::DataDamaged}) {
        if (doubts.Has(doubt)) {
            return true;
        }
    }
    return false;
}

std::string TextOfCondition(const CatalogueItem& item) {
    const Condition condition = ConditionOf(item);
    return condition.Kind == ConditionKind::Whole ? ConditionWord(condition.Kind)
                                                  : ConditionText(condition, item.IsLive());
}

std::string Joined(const std::vector<std::string>& phrases) {
    std::string text;
    for (const std::string& phrase : phrases) {
        text += (text.empty() ? "" : "; ") + phrase;
    }
    return text;
}

std::string AttributeNameOf(const std::u16string& stream) {
    return std::string(kUserPrefix) + NarrowText(stream);
}

bool IsAttributeName(const std::string& name) {
    return name.size() <= kMaxAttributeName && name.find('\0') == std::string::npos;
}

} // namespace

// False where the record can't be had, or there is none behind the entry.
bool MountedVolume::OpenRecord(Node node, CatalogueItem& item) try {
    const std::uint32_t id = node == MountIndex::kRoot ? kRootEntryId : index_.EntryOf(node);
    if (LoadEntryInto(id, item) == 0) {
        return false;
    }
    item.EntryId = id;
    return item.RecordSector != 0 && reader_.Open(item);
} catch (const CUserException&) {
    return false;
}

MountedFacts MountedVolume::FactsOf(Node node) try {
    const std::scoped_lock lock(turn_);
    CatalogueItem item;
    MountedFacts facts;
    facts.Known = OpenRecord(node, item);
    if (!facts.Known) {
        facts.Size = index_.IsFolder(node) ? 0 : item.Size;
        return facts;
    }
    facts.Times = reader_.Times();
    const auto stream = index_.IsFolder(node) ? nullptr : reader_.OpenStream();
    if (stream != nullptr) {
        facts.Size = WrittenSize(*stream);
        facts.Allocated = std::min(stream->AllocatedBytes(), facts.Size);
    }
    return facts;
} catch (const CUserException&) {
    return {};
}

std::unique_ptr<MountedFile> MountedVolume::Open(Node file) try {
    const std::scoped_lock lock(turn_);
    auto opened = std::make_unique<MountedFile>();
    if (!OpenRecord(file, opened->Item)) {
        return nullptr;
    }
    opened->Stream = reader_.OpenStream();
    if (opened->Stream != nullptr) {
        opened->Size = WrittenSize(*opened->Stream);
        const Doubts& doubts = opened->Stream->StreamDoubts();
        opened->HolesLost = opened->Stream->BytesBehindEnd() != 0 || LeavesGaps(doubts);
        opened->Damaged = doubts.Has(Doubt::DataDamaged);
    }
    return opened;
} catch (const CUserException&) {
    return nullptr;
}

MountedPiece MountedVolume::Read(MountedFile& file, std::uint64_t offset, Bytes buffer) try {
    const std::scoped_lock lock(turn_);
    if (offset >= file.Size || buffer.empty()) {
        return {};
    }
    std::uint64_t end = std::min<std::uint64_t>(file.Size, offset + buffer.size());
    if (file.HolesLost) {
        end = std::min(end, std::max(offset, file.Stream->NextHole(offset)));
    }
    const Bytes wanted = buffer.first(static_cast<std::size_t>(end - offset));
    if (wanted.empty()) {
        return {.Bytes = 0, .Failed = true};
    }
    if (ReadWhole(file, offset, wanted)) {
        return {.Bytes = wanted.size(), .Failed = false};
    }
    const std::size_t sound = SoundBytes(file, offset, wanted);
    return {.Bytes = sound, .Failed = sound < wanted.size()};
} catch (const CUserException&) {
    return {.Bytes = 0, .Failed = true};
}

bool MountedVolume::ReadWhole(MountedFile& file, std::uint64_t offset, Bytes buffer) {
    MissingData missing;
    const std::size_t got = file.Stream->Read(offset, buffer, missing);
    return got == buffer.size() && missing.None() &&
           (file.Damaged || !file.Stream->StreamDoubts().Has(Doubt::DataDamaged));
}

// A stream that decompresses tells once what is missing of what it keeps. A new one tells it again.
bool MountedVolume::Renew(MountedFile& file) {
    file.Stream = reader_.Open(file.Item) ? reader_.OpenStream() : nullptr;
    return file.Stream != nullptr && file.Stream->Size() >= file.Size;
}

// Bytes in front of the first sector, or unit, that can't be had.
std::size_t MountedVolume::SoundBytes(MountedFile& file, std::uint64_t offset, Bytes buffer) {
    const std::uint64_t unit = file.Stream->UnitBytes();
    const std::uint64_t step =
        unit != 0 ? unit : std::max<std::uint64_t>(Engine.SourceDisk.BytesPerSector, 1);
    std::size_t sound = 0;
    bool whole = true;
    while (sound < buffer.size() && whole) {
        const std::uint64_t at = offset + sound;
        const auto bytes =
            static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size() - sound, step - at % step));
        if (unit != 0 && !Renew(file)) {
            throw CUserException{};
        }
        whole = ReadWhole(file, at, buffer.subspan(sound, bytes));
        sound += whole ? bytes : 0;
    }
    if (unit != 0 && !Renew(file)) {
        throw CUserException{};
    }
    return sound;
}

std::uint64_t MountedVolume::NextData(const MountedFile& file, std::uint64_t offset) {
    const std::scoped_lock lock(turn_);
    return file.Stream == nullptr || file.HolesLost ? offset
                                                    : std::min(file.Stream->NextData(offset), file.Size);
}

std::uint64_t MountedVolume::NextHole(const MountedFile& file, std::uint64_t offset) {
    const std::scoped_lock lock(turn_);
    return file.Stream == nullptr || file.HolesLost ? file.Size
                                                    : std::min(file.Stream->NextHole(offset), file.Size);
}

std::vector<std::string> MountedVolume::AttributesOf(Node node) try {
    const std::scoped_lock lock(turn_);
    std::vector<std::string> names;
    CatalogueItem item;
    const bool opened = OpenRecord(node, item);
    if (opened) {
        for (const ExactStreamInfo& stream : reader_.Streams()) {
            const std::string name = AttributeNameOf(stream.Name);
            if (!stream.Name.empty() && IsAttributeName(name)) {
                names.push_back(name);
            }
        }
    }
    for (const std::string_view own : {kConditionName, kDeletedName, kDoubtsName}) {
        if (OwnAttribute(item, opened, own)) {
            std::erase(names, own);
            names.emplace_back(own);
        }
    }
    return names;
} catch (const CUserException&) {
    return {};
}

MountedVolume::Got MountedVolume::Attribute(Node node, std::string_view name, std::size_t most,
                                            std::string& value) try {
    if (!name.starts_with(kUserPrefix)) {
        return Got::NoSuch;
    }
    const std::scoped_lock lock(turn_);
    CatalogueItem item;
    const bool opened = OpenRecord(node, item);
    if (auto own = OwnAttribute(item, opened, name)) {
        value = std::move(*own);
        return Got::Value;
    }
    return opened ? StreamValue(name.substr(kUserPrefix.size()), most, value) : Got::NoSuch;
} catch (const CUserException&) {
    return Got::Failed;
}

// Of an entry whose record has been opened, or can't be.
std::optional<std::string> MountedVolume::OwnAttribute(const CatalogueItem& item, bool opened,
                                                       std::string_view name) {
    if (name == kConditionName) {
        std::string text = TextOfCondition(item);
        return text.empty() ? std::nullopt : std::optional(std::move(text));
    }
    if (name == kDeletedName) {
        return item.IsLive() || item.EntryId <= kRootEntryId ? std::nullopt
                                                             : std::optional<std::string>("yes");
    }
    if (name == kDoubtsName && opened && !item.IsFolder()) {
        const auto stream = reader_.OpenStream();
        const auto reasons =
            stream == nullptr ? std::vector<std::string>() : stream->StreamDoubts().Reasons();
        return reasons.empty() ? std::nullopt : std::optional(Joined(reasons));
    }
    return std::nullopt;
}

MountedVolume::Got MountedVolume::StreamValue(std::string_view stream, std::size_t most, std::string& value) {
    const std::unique_ptr<ExactStream> data = stream.empty() ? nullptr : reader_.OpenStream(WideText(stream));
    if (data == nullptr) {
        return Got::NoSuch;
    }
    if (data->Size() > most) {
        return Got::TooLarge;
    }
    value.resize(static_cast<std::size_t>(data->Size()));
    MissingData missing;
    data->Read(0, Bytes(reinterpret_cast<std::uint8_t*>(value.data()), value.size()), missing);
    return missing.None() && data->BytesBehindEnd() == 0 && !LeavesGaps(data->StreamDoubts()) ? Got::Value
                                                                                              : Got::Failed;
}

} // namespace thntfs
