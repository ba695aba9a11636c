#include "partitions/WhyNoVolumes.h"

#include "engine/EngineState.h"
#include "partitions/GptTable.h"
#include "partitions/LookAt.h"
#include "platform/system/CoreText.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string_view>

namespace thntfs {

namespace {

constexpr std::uint8_t kGptProtective = 0xEE;
constexpr std::uint16_t kTableMark = 0xAA55;

/// The first sector, as a classic partition table.
class ClassicTable {
public:
    ClassicTable()
        : readable_(LookAt(sector_, 0)) {}

    [[nodiscard]] bool IsReadable() const { return readable_; }
    [[nodiscard]] bool IsBlank() const {
        return std::ranges::all_of(sector_, [](std::uint8_t byte) { return byte == 0; });
    }
    [[nodiscard]] bool IsSigned() const { return U16At(sector_, 510) == kTableMark; }
    [[nodiscard]] std::uint8_t Type(std::size_t entry) const { return sector_[446 + 16 * entry + 4]; }
    [[nodiscard]] bool IsEmpty() const {
        return Count([](std::uint8_t type) { return type != 0; }) == 0;
    }
    [[nodiscard]] bool IsProtective() const {
        return IsSigned() && Count([](std::uint8_t type) { return type == kGptProtective; }) != 0;
    }

    /// An entry begins with one of two values; code, as in other boot sectors, with any. Some of these leave
    /// the place of the entries empty.
    [[nodiscard]] bool IsOtherBootSector() const {
        const auto possible = [this](std::size_t entry) { return (sector_[446 + 16 * entry] & 0x7FU) == 0; };
        const std::uint16_t sectorBytes = U16At(sector_, 11);
        const bool fat = sectorBytes >= 512 && sectorBytes <= 4096 && std::has_single_bit(sectorBytes);
        const bool exFat = std::string_view(reinterpret_cast<const char*>(&sector_[3]), 5) == "EXFAT";
        return !std::ranges::all_of(kEntries, possible) || (IsEmpty() && (fat || exFat));
    }

private:
    static constexpr std::array<std::size_t, 4> kEntries{0, 1, 2, 3};

    template <typename Test>
    [[nodiscard]] std::ptrdiff_t Count(Test test) const {
        return std::ranges::count_if(kEntries, [&](std::size_t entry) { return test(Type(entry)); });
    }

    std::array<std::uint8_t, 512> sector_{};
    bool readable_;
};

std::string WhyUnusable(TableVolumeState state) {
    switch (state) {
    case TableVolumeState::NoBootSector:
        return CoreText("Core", "The partition table names a partition for NTFS, but no NTFS boot sector "
                                "stands at its start. It holds another file system, or its beginning is "
                                "damaged.");
    case TableVolumeState::Unreadable:
        return CoreText("Core",
                        "The partition table names a partition for NTFS, but its boot sector can't be "
                        "read.");
    case TableVolumeState::LostTable:
        return CoreText("Core", "A part of the partition table can't be read.");
    default:
        return {};
    }
}

std::string WhyNotInGpt(const GptTable& table, bool protective) {
    if (!protective) {
        return CoreText("Core",
                        "This was a GPT disk before: a GUID partition table is left, but no NTFS volume "
                        "stands where it names one.");
    }
    return table.Entries.empty()
               ? CoreText("Core", "The GUID partition table of the disk (GPT) is empty.")
               : CoreText("Core",
                          "None of the partitions in the GUID partition table of the disk (GPT) holds "
                          "NTFS.");
}

std::string WhyNotInClassicTable(const ClassicTable& table) {
    if (!table.IsReadable()) {
        return CoreText("Core", "The sector of the partition table can't be read.");
    }
    if (table.IsBlank()) {
        return CoreText("Core", "There is no partition table: its sector holds nothing but zeros.");
    }
    if (!table.IsSigned()) {
        return CoreText("Core", "The partition table is damaged: its sector lacks the mark at the end.");
    }
    if (table.IsOtherBootSector()) {
        return CoreText("Core",
                        "There is no partition table: another file system begins in its sector, or the "
                        "table is damaged.");
    }
    if (table.IsEmpty()) {
        return CoreText("Core", "The partition table is empty.");
    }
    return table.Type(0) == 0
               ? CoreText("Core", "The partition table is damaged: it lacks its first entry.")
               : CoreText("Core", "None of the partitions in the partition table is of the type for NTFS.");
}

} // namespace

std::string WhyNoVolumes() {
    if (!Engine.TableVolumes.empty()) {
        return WhyUnusable(Engine.TableVolumes.front().State);
    }
    const ClassicTable classic;
    const GptTables gpt = ReadGptTables();
    if (gpt.First.Sound || gpt.Backup.Sound) {
        return WhyNotInGpt(gpt.First.Sound ? gpt.First : gpt.Backup, classic.IsProtective());
    }
    return classic.IsProtective()
               ? CoreText("Core", "This was a GPT disk, but its GUID partition table is damaged or gone.")
               : WhyNotInClassicTable(classic);
}

} // namespace thntfs
