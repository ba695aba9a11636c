#include "mount/MountIndex.h"

#include <algorithm>
#include <bit>
#include <functional>

namespace thntfs {

namespace {

constexpr std::size_t kLeastSlots = 64;
constexpr std::size_t kUsualNameBytes = 24;

} // namespace

MountIndex::MountIndex(std::size_t names)
    : places_(1)
    , slots_(std::bit_ceil(std::max(kLeastSlots, 2 * names))) {
    places_.reserve(names + 1);
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
    if (places_.size() * 2 > slots_.size()) {
        GrowSlots();
    }
    const std::size_t slot = SlotOf(folder, name);
    if (slots_[slot] != 0) {
        return std::nullopt;
    }
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

// The place of a name, or the free one where it belongs.
std::size_t MountIndex::SlotOf(Node folder, std::string_view name) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot =
        (std::hash<std::string_view>()(name) + folder * std::size_t{0x9E3779B97F4A7C15}) & mask;
    while (slots_[slot] != 0 && (places_[slots_[slot]].Parent != folder || NameOf(slots_[slot]) != name)) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

void MountIndex::GrowSlots() {
    slots_.assign(slots_.size() * 2, 0);
    for (Node node = 1; node < places_.size(); ++node) {
        slots_[SlotOf(places_[node].Parent, NameOf(node))] = node;
    }
}

std::optional<MountIndex::Node> MountIndex::Find(Node folder, std::string_view name) const {
    const Node found = slots_[SlotOf(folder, name)];
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
