#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

struct CatalogueItem;

// What is still there of the files in the catalogue. A scan judges each deleted file by its clusters: whether
// they are free, or used by other files by now. It is kept beside the catalogue, a byte an entry, in
// EngineState::Conditions. A saved scan keeps it in a file of its own.

enum class ConditionKind : std::uint8_t {
    None, ///< a folder
    Unknown,
    Whole,
    Partly,
    Overwritten
};

struct Condition {
    ConditionKind Kind = ConditionKind::None;
    std::uint8_t Share =
        0; ///< percent of its clusters that are still its own: 1 to 99 for Partly, else 0 or 100
};

/// The byte of an entry that nothing was put down for. 1 to 99 are the share of a file that is there partly.
inline constexpr std::uint8_t kNotJudged = 0;
inline constexpr std::uint8_t kWhole = 100;
inline constexpr std::uint8_t kOverwritten = 101;
inline constexpr std::uint8_t kUnknown = 102; ///< the last that has a meaning

/// The byte for a file of which `good` of `total` clusters are still its own.
std::uint8_t ConditionByte(std::uint64_t good, std::uint64_t total);

/// Forgets all: another catalogue begins.
void ClearConditions();

/// Puts a byte down for an entry. Without memory for it the entry stays as it was.
void SetCondition(std::uint32_t entryId, std::uint8_t byte);

/// A file that nothing was put down for is whole while it is live, and unknown once it is deleted.
Condition ConditionOf(std::uint32_t entryId, bool folder, bool live);
Condition ConditionOf(const CatalogueItem& item);

/// "whole", "partly", "overwritten", "unknown"; empty for a folder.
const char* ConditionWord(ConditionKind kind);

/// The condition for people: the word, and for a file that is there partly "partly 62 %". Empty for folders,
/// and for live files that are whole.
std::string ConditionText(Condition condition, bool live);

/// Rises with what is there: folders, unknown, overwritten, partly by share, whole, live and whole.
unsigned ConditionRank(Condition condition, bool live);

/// Kinds of which one is wanted, a bit each; without any, everything is.
using ConditionSet = std::uint8_t;
inline constexpr ConditionSet SetOf(ConditionKind kind) {
    return static_cast<ConditionSet>(1U << static_cast<unsigned>(kind));
}

/// A folder is wanted by no kind.
bool ConditionWanted(ConditionSet wanted, const CatalogueItem& item);

} // namespace thntfs
