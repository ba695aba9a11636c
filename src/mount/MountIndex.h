#pragma once

#include "platform/system/BigBlock.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace thntfs {

/// The tree that a mount shows: names, and which entry of the catalogue each stands for. It answers without a
/// look at the catalogue or the medium, from many threads once it is complete. A name takes 40 to 50 bytes
/// and its letters.
class MountIndex {
public:
    /// A name of the tree. The root is 0, so that 0 stands for "none" among children.
    using Node = std::uint32_t;
    static constexpr Node kRoot = 0;
    /// A text that the index keeps, 1 to 255 bytes.
    struct KeptName {
        std::uint64_t At : 56 = 0;
        std::uint64_t Bytes : 8 = 0;
    };

    MountIndex();

    /// Makes room for about so many bytes of names.
    void Reserve(std::size_t nameBytes) { names_.reserve(nameBytes); }
    KeptName Keep(std::string_view name);
    /// The name that a save gives an entry of this name.
    KeptName KeepTargetName(std::u16string_view name);
    [[nodiscard]] std::string_view TextOf(KeptName name) const;

    /// Hangs a name into a folder, behind those that it has. Gives none where it is taken.
    std::optional<Node> AddFolder(Node folder, KeptName name, std::uint32_t entryId);
    std::optional<Node> AddFile(Node folder, KeptName name, std::uint32_t entryId);
    /// A further name of a file.
    std::optional<Node> AddLink(Node folder, KeptName name, Node file);

    /// The name in a folder; none where it isn't there.
    [[nodiscard]] std::optional<Node> Find(Node folder, std::string_view name) const;

    [[nodiscard]] std::size_t Count() const { return places_.Count(); }
    [[nodiscard]] std::string_view NameOf(Node node) const { return TextOf(places_.At(node).Name); }
    [[nodiscard]] Node ParentOf(Node node) const { return places_.At(node).Parent; }
    [[nodiscard]] bool IsFolder(Node node) const { return places_.At(node).What == Kind::Folder; }
    /// What the name stands for: a further name's file, else the node itself.
    [[nodiscard]] Node TargetOf(Node node) const;
    [[nodiscard]] std::uint32_t EntryOf(Node node) const { return places_.At(TargetOf(node)).Value; }
    /// How many names a file has.
    [[nodiscard]] unsigned NamesOf(Node file) const;

    /// A folder's names in the order in which they were added; 0 behind the last.
    [[nodiscard]] Node FirstIn(Node folder) const;
    [[nodiscard]] Node NextOf(Node node) const;

private:
    enum class Kind : std::uint8_t { Folder, File, Link };

    struct Place {
        KeptName Name;
        std::uint32_t Value = 0; ///< EntryId, of a further name its file's node
        Node Parent = kRoot;
        Node Next = 0;           ///< in the ring of a folder's names
        Node Last = 0;           ///< of a folder: the name added last, whose Next is the first
        std::uint32_t Table = 0; ///< of a folder: its place in tables_, 0 while it is empty
        Kind What = Kind::Folder;
    };

    /// The names of one folder, by open hashing: they lie side by side, as they are asked for.
    struct Table {
        std::size_t FirstSlot = 0;
        std::uint32_t Slots = 0; ///< a power of two
        std::uint32_t Names = 0;
    };

    [[nodiscard]] KeptName KeptFrom(std::size_t start) const;
    std::optional<Node> Add(Node folder, KeptName name, std::uint32_t value, Kind what);
    Table& RoomIn(Node folder);
    [[nodiscard]] std::size_t SlotOf(const Table& table, std::string_view name) const;

    BigBlockPool<Place> places_;
    std::string names_;
    std::vector<Table> tables_;                       ///< of folders with names; the first is none's
    std::vector<Node> slots_;                         ///< of all tables; 0 for a free slot
    std::unordered_map<Node, unsigned> furtherNames_; ///< of a file, where it has any
};

} // namespace thntfs
