#include "mount/MountIndex.h"

#include "content/TargetName.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace thntfs {

namespace {

constexpr std::uint32_t kLeastSlots = 16;
constexpr std::uint64_t kMaxNameAt = (std::uint64_t{1} << 56U) - 1;

} // namespace

MountIndex::MountIndex()
    : tables_(1) {
    places_.Add();
}

MountIndex::KeptName MountIndex::Keep(std::string_view name) {
    const std::size_t at = names_.size();
    names_ += name;
    return KeptFrom(at);
}

MountIndex::KeptName MountIndex::KeepTargetName(std::u16string_view name) {
    const std::size_t at = names_.size();
    AppendTargetName(names_, name);
    return KeptFrom(at);
}

MountIndex::KeptName MountIndex::KeptFrom(std::size_t start) const {
    KeptName kept;
    kept.At = start & kMaxNameAt;
    kept.Bytes = (names_.size() - start) & 0xFFU;
    return kept;
}

std::string_view MountIndex::TextOf(KeptName name) const {
    return std::string_view(names_).substr(name.At, name.Bytes);
}

std::optional<MountIndex::Node> MountIndex::AddFolder(Node folder, KeptName name, std::uint32_t entryId) {
    return Add(folder, name, entryId, Kind::Folder);
}

std::optional<MountIndex::Node> MountIndex::AddFile(Node folder, KeptName name, std::uint32_t entryId) {
    return Add(folder, name, entryId, Kind::File);
}

std::optional<MountIndex::Node> MountIndex::AddLink(Node folder, KeptName name, Node file) {
    const auto added = Add(folder, name, file, Kind::Link);
    if (added) {
        ++furtherNames_[file];
    }
    return added;
}

std::optional<MountIndex::Node> MountIndex::Add(Node folder, KeptName name, std::uint32_t value, Kind what) {
    Table& table = RoomIn(folder);
    const std::size_t slot = SlotOf(table, TextOf(name));
    if (slots_[slot] != 0) {
        return std::nullopt;
    }
    ++table.Names;
    const auto node = static_cast<Node>(places_.Count());
    Place& place = places_.Add();
    Place& above = places_.At(folder);
    place = {.Name = name, .Value = value, .Parent = folder, .Next = node, .What = what};
    slots_[slot] = node;
    if (above.Last != 0) {
        place.Next = std::exchange(places_.At(above.Last).Next, node);
    }
    above.Last = node;
    return node;
}

// The folder's table with a slot to spare. A larger one is made of its names behind all others; the room of
// the small one is lost, which all in all is less than the tables take.
MountIndex::Table& MountIndex::RoomIn(Node folder) {
    if (places_.At(folder).Table == 0) {
        places_.At(folder).Table = static_cast<std::uint32_t>(tables_.size());
        tables_.emplace_back();
    }
    Table& table = tables_[places_.At(folder).Table];
    if (table.Names * std::size_t{4} >= table.Slots * std::size_t{3}) {
        table.FirstSlot = slots_.size();
        table.Slots = std::max(kLeastSlots, table.Slots * 2);
        slots_.resize(slots_.size() + table.Slots);
        for (Node node = FirstIn(folder); node != 0; node = NextOf(node)) {
            slots_[SlotOf(table, NameOf(node))] = node;
        }
    }
    return table;
}

// The place of a name, or the free one where it belongs.
std::size_t MountIndex::SlotOf(const Table& table, std::string_view name) const {
    const std::size_t mask = table.Slots - 1;
    std::size_t slot = std::hash<std::string_view>()(name) & mask;
    while (slots_[table.FirstSlot + slot] != 0 && NameOf(slots_[table.FirstSlot + slot]) != name) {
        slot = (slot + 1) & mask;
    }
    return table.FirstSlot + slot;
}

std::optional<MountIndex::Node> MountIndex::Find(Node folder, std::string_view name) const {
    const Table& table = tables_[places_.At(folder).Table];
    const Node found = table.Slots == 0 ? 0 : slots_[SlotOf(table, name)];
    return found != 0 ? std::optional(found) : std::nullopt;
}

MountIndex::Node MountIndex::TargetOf(Node node) const {
    return places_.At(node).What == Kind::Link ? places_.At(node).Value : node;
}

unsigned MountIndex::NamesOf(Node file) const {
    const auto further = furtherNames_.find(file);
    return 1 + (further == furtherNames_.end() ? 0 : further->second);
}

MountIndex::Node MountIndex::FirstIn(Node folder) const {
    const Node last = places_.At(folder).Last;
    return last == 0 ? 0 : places_.At(last).Next;
}

MountIndex::Node MountIndex::NextOf(Node node) const {
    return places_.At(places_.At(node).Parent).Last == node ? 0 : places_.At(node).Next;
}

} // namespace thntfs
