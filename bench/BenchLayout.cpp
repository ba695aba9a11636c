#include "BenchLayout.h"

#include <algorithm>
#include <string_view>

namespace thntfs::bench {

namespace {

constexpr std::uint32_t kFanOut = 8; ///< folders in a folder where they aren't spread at random

// Folders stand evenly between the files, the last as full as the first, except that the alternating layout
// has them all at the front.
std::uint32_t FolderNumber(const LayoutPlan& plan, std::uint32_t folder) {
    const std::uint64_t spread = std::uint64_t{folder} * plan.UserRecords / plan.Folders;
    return kFirstUserRecord +
           (plan.Order == Layout::Alternating ? folder : static_cast<std::uint32_t>(spread));
}

/// The last folder that stands at or before a slot.
std::uint32_t FolderBefore(const LayoutPlan& plan, std::uint32_t slot) {
    if (plan.Order == Layout::Alternating) {
        return std::min(slot, plan.Folders - 1);
    }
    return static_cast<std::uint32_t>(((std::uint64_t{slot} + 1) * plan.Folders - 1) / plan.UserRecords);
}

bool IsFolderSlot(const LayoutPlan& plan, std::uint32_t slot) {
    return FolderNumber(plan, FolderBefore(plan, slot)) == kFirstUserRecord + slot;
}

std::uint32_t ParentOfFolder(const LayoutPlan& plan, std::uint32_t folder, std::uint64_t random) {
    if (folder == 0 || (plan.Order == Layout::Alternating && folder < 2)) {
        return kRootNumber;
    }
    if (plan.Order == Layout::Random) {
        return FolderNumber(plan, static_cast<std::uint32_t>(random % folder));
    }
    return FolderNumber(plan, (folder - 1) / kFanOut);
}

std::uint32_t ParentOfAlternating(const LayoutPlan& plan, std::uint32_t slot) {
    const std::uint32_t file = slot - plan.Folders;
    if (file / 2 < plan.Children || plan.Folders <= 2) {
        return FolderNumber(plan, file % 2);
    }
    const std::uint64_t rest = plan.UserRecords - plan.Folders - 2 * plan.Children;
    const std::uint64_t place = file - 2 * plan.Children;
    return FolderNumber(plan, 2 + static_cast<std::uint32_t>(place * (plan.Folders - 2) / rest));
}

std::uint32_t ParentOfFile(const LayoutPlan& plan, std::uint32_t slot, std::uint64_t random) {
    switch (plan.Order) {
    case Layout::Alternating:
        return ParentOfAlternating(plan, slot);
    case Layout::Grouped:
        return FolderNumber(plan, FolderBefore(plan, slot));
    case Layout::Random:
        break;
    }
    return FolderNumber(plan, static_cast<std::uint32_t>(random % plan.Folders));
}

constexpr std::u16string_view kLatin = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_- ";
constexpr std::u16string_view kExtensions[] = {u".txt", u".jpg", u".docx", u".pdf",
                                               u".dat", u".cpp", u".xml"};

char16_t UnitOf(std::uint64_t script, std::uint64_t random) {
    if (script == 0) {
        return static_cast<char16_t>(0x0410 + random % 64);
    }
    if (script == 1) {
        return static_cast<char16_t>(0x4E00 + random % 0x5000);
    }
    return kLatin[random % kLatin.size()];
}

} // namespace

std::uint64_t Mix(std::uint64_t seed, std::uint64_t number) {
    std::uint64_t value = seed + (number + 1) * 0x9E3779B97F4A7C15;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EB;
    return value ^ (value >> 31);
}

RecordRole RoleOf(const LayoutPlan& plan, std::uint32_t number) {
    const std::uint32_t slot = number - kFirstUserRecord;
    const std::uint64_t random = Mix(plan.Seed, number);
    RecordRole role;
    role.Folder = IsFolderSlot(plan, slot);
    if (role.Folder) {
        role.Parent = ParentOfFolder(plan, FolderBefore(plan, slot), random >> 8);
        return role;
    }
    role.Parent = ParentOfFile(plan, slot, random >> 8);
    role.Live = Mix(plan.Seed + 1, number) % 100 >= plan.DeletedPercent;
    return role;
}

std::u16string NameOf(std::uint64_t seed, std::uint32_t number, bool wide) {
    std::uint64_t random = Mix(seed + 2, number);
    const std::u16string_view extension = kExtensions[random % std::size(kExtensions)];
    const std::uint64_t script = wide ? (random >> 8) % 10 : 9;
    const std::size_t length = 8 + (random >> 16) % 33;
    std::u16string name;
    name.reserve(length);
    while (name.size() + extension.size() < length) {
        random = random * 6364136223846793005 + 1442695040888963407;
        name.push_back(UnitOf(script, random >> 40));
    }
    return name.append(extension);
}

} // namespace thntfs::bench
