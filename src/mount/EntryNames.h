#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace thntfs {

struct SaveOptions;

/// What the tree of a mount needs of all entries, by EntryId: 16 bytes each and their names. One pass along
/// the catalogue, in the order in which its files hold them, costs a part of what loading them in the tree's
/// order does.
class EntryNames {
public:
    /// Reads the catalogue that is open, until it is told to stop (ScanRunFlag). Entries that can't be read
    /// are left out.
    explicit EntryNames(const SaveOptions& options);

    [[nodiscard]] std::size_t Count() const { return facts_.size(); }
    [[nodiscard]] bool IsIn(std::uint32_t entryId) const { return facts_[entryId].Readable; }
    [[nodiscard]] bool IsFolder(std::uint32_t entryId) const { return facts_[entryId].Folder; }
    /// Whether the options take the entry; of a folder, for its own sake.
    [[nodiscard]] bool IsWanted(std::uint32_t entryId) const { return facts_[entryId].Wanted; }
    /// The name under which it is saved where that is free.
    [[nodiscard]] std::string_view NameOf(std::uint32_t entryId) const;

private:
    struct Facts {
        std::uint64_t NameAt = 0;
        std::uint8_t NameBytes = 0;
        bool Readable = false;
        bool Folder = false;
        bool Wanted = false;
    };

    std::vector<Facts> facts_;
    std::string names_;
};

} // namespace thntfs
