#include "mount/MountIndex.h"

#include <algorithm>
#include <functional>

namespace thntfs {

namespace {

constexpr std::uint32_t kLeastSlots = 4;
constexpr std::size_t kUsualSlots = 3;

} // namespace

MountIndex::MountIndex(std::size_t names)
    : places_(1)
    , tables_(1) {
    places_.reserve(names + 1);
    slots_.reserve(names * kUsualSlots);
    names_.reserve(names * kUsualNameBytes);
}

std::optional<MountIndex::Node> MountIndex::AddFolder(Node folder, std::string_view name,
                                                      std::uint32_t entryId) {
    return Add(folder, name, entryId, Kind::Folder);
}

std::optional<MountIndex::Node> MountIndex::AddFile(Node folder, std::string_view name,
                                                    std::uint32_t entryId) {
    return Add(folder, name, entryId, Kind::File);
}

std::optional<MountIndex::Node> MountIndex::AddLink(Node folder, std::string_view name, Node file) {
    const auto added = Add(folder, name, file, Kind::Link);
    if (added) {
        ++furtherNames_[file];
    }
    return added;
}

std::optional<MountIndex::Node> MountIndex::Add(Node folder, std::string_view name, std::uint32_t value,
                                                Kind what) {
    Table& table = RoomIn(folder);
    const std::size_t slot = SlotOf(table, name);
    if (slots_[slot] != 0) {
        return std::nullopt;
    }
    ++table.Names;
    const auto node = static_cast<Node>(places_.size());
    const Node last = places_[folder].Last;
    places_.push_back({.NameAt = names_.size(),
                       .Value = value,
                       .Parent = folder,
                       .Next = last == 0 ? node : places_[last].Next,
                       .NameBytes = static_cast<std::uint8_t>(name.size()),
                       .What = what});
    names_ += name;
    slots_[slot] = node;
    if (last != 0) {
        places_[last].Next = node;
    }
    places_[folder].Last = node;
    return node;
}

// The folder's table with a slot to spare. A larger one is made of its names behind all others; the room of
// the small one is lost, which all in all is less than the tables take.
MountIndex::Table& MountIndex::RoomIn(Node folder) {
    if (places_[folder].Table == 0) {
        places_[folder].Table = static_cast<std::uint32_t>(tables_.size());
        tables_.emplace_back();
    }
    Table& table = tables_[places_[folder].Table];
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
    const Table& table = tables_[places_[folder].Table];
    const Node found = table.Slots == 0 ? 0 : slots_[SlotOf(table, name)];
    return found != 0 ? std::optional(found) : std::nullopt;
}

std::string_view MountIndex::NameOf(Node node) const {
    return std::string_view(names_).substr(places_[node].NameAt, places_[node].NameBytes);
}

MountIndex::Node MountIndex::TargetOf(Node node) const {
    return places_[node].What == Kind::Link ? places_[node].Value : node;
}

unsigned MountIndex::NamesOf(Node file) const {
    const auto further = furtherNames_.find(file);
    return 1 + (further == furtherNames_.end() ? 0 : further->second);
}

MountIndex::Node MountIndex::FirstIn(Node folder) const {
    const Node last = places_[folder].Last;
    return last == 0 ? 0 : places_[last].Next;
}

MountIndex::Node MountIndex::NextOf(Node node) const {
    return places_[places_[node].Parent].Last == node ? 0 : places_[node].Next;
}

} // namespace thntfs
