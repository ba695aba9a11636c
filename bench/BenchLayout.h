#pragma once

#include <cstdint>
#include <string>

namespace thntfs::bench {

inline constexpr std::uint32_t kRootNumber = 5;
inline constexpr std::uint32_t kFirstUserRecord = 24;

enum class Layout {
    Random,     ///< each file's parent is a random folder
    Grouped,    ///< files come folder by folder
    Alternating ///< files alternate between the first two folders until these are full, the rest comes
                ///< grouped
};

/// How the records behind the metafiles are shared between folders and files.
struct LayoutPlan {
    Layout Order = Layout::Random;
    std::uint32_t UserRecords = 0; ///< records from kFirstUserRecord on that the plan covers
    std::uint32_t Folders = 1;     ///< of these, at least 1 and for Alternating at least 2
    std::uint32_t Children = 0;    ///< Alternating: files in each of the two folders
    std::uint32_t DeletedPercent = 0;
    std::uint64_t Seed = 1;
};

struct RecordRole {
    bool Folder = false;
    bool Live = true;
    std::uint32_t Parent = kRootNumber;
};

/// What stands in record `number` by the plan. The answer depends on the plan and the number alone.
RecordRole RoleOf(const LayoutPlan& plan, std::uint32_t number);

/// 64 bits that look random, by seed and number.
std::uint64_t Mix(std::uint64_t seed, std::uint64_t number);

/// Name of 8 to 40 UTF-16 units, by seed and number. With `wide` some names are Cyrillic or Chinese.
std::u16string NameOf(std::uint64_t seed, std::uint32_t number, bool wide);

} // namespace thntfs::bench
