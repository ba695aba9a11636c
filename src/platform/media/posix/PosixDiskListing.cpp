#include "platform/media/DiskListing.h"
#include "platform/media/posix/SysfsDisks.h"
#include "platform/media/posix/SysfsFolders.h"
#include "platform/media/posix/UdevRecord.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>

namespace thntfs {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kKernelSectorBytes =
    512; // sysfs counts sizes in these, whatever the disk's own sectors are
constexpr std::uint32_t kHeads = 255;
constexpr std::uint32_t kSectorsPerTrack = 63;
constexpr std::size_t kMaxAttributeBytes = 4096;

/// What follows the beginning of a whole disk's name. What is in front of partitions, boot areas of memory
/// cards and roads to one of several has another tail.
enum class Tail { Letters, Number, NumberNNumber, Any };

struct NameKind {
    const char* Beginning;
    Tail Rest;
    std::size_t Place; ///< in the order of the list
};

constexpr std::array<NameKind, 9> kKinds = {{{"sd", Tail::Letters, 0},
                                             {"hd", Tail::Letters, 0},
                                             {"xvd", Tail::Letters, 0},
                                             {"nvme", Tail::NumberNNumber, 1},
                                             {"vd", Tail::Letters, 2},
                                             {"mmcblk", Tail::Number, 3},
                                             {"md", Tail::Any, 4},
                                             {"nbd", Tail::Number, 5},
                                             {"loop", Tail::Number, 6}}};

bool IsAll(std::string_view text, char first, char last) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [=](char c) { return c >= first && c <= last; });
}

bool IsNumber(std::string_view text) { return IsAll(text, '0', '9'); }

bool HasTail(std::string_view text, Tail tail) {
    const std::size_t letter = text.find('n');
    switch (tail) {
    case Tail::Letters:
        return IsAll(text, 'a', 'z');
    case Tail::Number:
        return IsNumber(text);
    case Tail::NumberNNumber:
        return letter != std::string_view::npos && IsNumber(text.substr(0, letter)) &&
               IsNumber(text.substr(letter + 1));
    case Tail::Any:
        break;
    }
    return !text.empty();
}

std::string RawText(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::string text(kMaxAttributeBytes, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(in.gcount()));
    return text;
}

std::string Text(const fs::path& file) { return TrimmedText(RawText(file)); }

std::uint64_t Number(const fs::path& file) {
    const std::string text = Text(file);
    std::uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// The place of a whole disk's name in the order of the list, none for any other name.
std::optional<std::size_t> DiskKindOf(std::string_view name) {
    for (const NameKind& kind : kKinds) {
        const std::string_view beginning = kind.Beginning;
        if (name.starts_with(beginning) && HasTail(name.substr(beginning.size()), kind.Rest)) {
            return kind.Place;
        }
    }
    return std::nullopt;
}

/// True where a folder on a road is a word alone or with a number behind it, as "usb1".
bool LeadsThrough(std::string_view road, std::string_view word) {
    for (std::size_t at = road.find(word); at != std::string_view::npos; at = road.find(word, at + 1)) {
        const std::string_view rest = road.substr(at + word.size());
        const std::string_view tail = rest.substr(0, rest.find('/'));
        if (at > 0 && road[at - 1] == '/' && (tail.empty() || IsNumber(tail))) {
            return true;
        }
    }
    return false;
}

std::string FirstOf(std::initializer_list<std::string> texts) {
    const auto* found =
        std::find_if(texts.begin(), texts.end(), [](const std::string& text) { return !text.empty(); });
    return found == texts.end() ? std::string() : *found;
}

/// One disk's folder in sysfs, with the device manager's record beside it.
class SysfsDisk {
public:
    SysfsDisk(fs::path folder, const std::string& udevFolder)
        : folder_(std::move(folder))
        , name_(folder_.filename())
        , udev_(udevFolder + "/b" + Text(folder_ / "dev")) {
        std::error_code failure;
        const fs::path real = fs::canonical(folder_, failure);
        road_ = failure ? std::string() : real.string();
    }

    /// Some names stand for no disk: a road to one of several (NVMe multipath), a loop device with nothing
    /// behind it.
    [[nodiscard]] bool IsDisk() const {
        const bool emptyLoop = name_.starts_with("loop") && BackingFile().empty();
        const bool emptyArray =
            (name_.starts_with("md") || name_.starts_with("nbd")) && Number(folder_ / "size") == 0;
        return Text(folder_ / "hidden") != "1" && !emptyLoop && !emptyArray;
    }

    [[nodiscard]] DiskProperties Properties() const {
        DiskProperties disk;
        disk.Path = DevicePathOf(name_);
        disk.SizeBytes = Number(folder_ / "size") * kKernelSectorBytes;
        disk.BytesPerSector =
            disk.SizeBytes == 0
                ? 0
                : static_cast<std::uint32_t>(Number(folder_ / "queue" / "logical_block_size"));
        disk.Model = Model();
        disk.Serial = FirstOf({udev_.Value("ID_SERIAL_SHORT"), udev_.Value("ID_SCSI_SERIAL"),
                               Text(folder_ / "device" / "serial"), Text(folder_ / "serial"), SerialPage()});
        disk.Revision = FirstOf({udev_.Value("ID_REVISION"), Text(folder_ / "device" / "firmware_rev"),
                                 Text(folder_ / "device" / "rev"), Text(folder_ / "device" / "fwrev")});
        disk.Interface = Interface();
        disk.Media = Media();
        disk.Heads = kHeads;
        disk.Cylinders = disk.BytesPerSector == 0 ? 0
                                                  : disk.SizeBytes / disk.BytesPerSector /
                                                        (std::uint64_t{kHeads} * kSectorsPerTrack);
        disk.Parts = Parts();
        return disk;
    }

private:
    /// The kernel writes '!' where a device's name holds '/'.
    static std::string DevicePathOf(std::string name) {
        std::replace(name.begin(), name.end(), '!', '/');
        return "/dev/" + name;
    }

    [[nodiscard]] std::string BackingFile() const { return Text(folder_ / "loop" / "backing_file"); }

    [[nodiscard]] std::string Model() const {
        if (name_.starts_with("loop")) {
            return BackingFile();
        }
        if (name_.starts_with("md")) {
            return TrimmedText("RAID array " + Text(folder_ / "md" / "level"));
        }
        const std::string told = udev_.Unescaped("ID_MODEL_ENC");
        const std::string vendor = Text(folder_ / "device" / "vendor");
        const std::string model = Text(folder_ / "device" / "model");
        // ATA disks have "ATA" for a vendor, and PCI devices a number.
        const bool plain = vendor.empty() || vendor == "ATA" || vendor.starts_with("0x") || model.empty();
        return FirstOf({told, plain ? model : vendor + " " + model, Text(folder_ / "device" / "name"),
                        name_.starts_with("vd") ? "Virtual disk" : ""});
    }

    /// The serial number that a SCSI disk keeps in its page 0x80: four bytes of head, then text.
    [[nodiscard]] std::string SerialPage() const {
        const std::string page = RawText(folder_ / "device" / "vpd_pg80");
        return page.size() > 4 ? TrimmedText(page.substr(4)) : std::string();
    }

    [[nodiscard]] std::string Interface() const {
        using Pair = std::pair<const char*, const char*>;
        constexpr std::array<Pair, 6> kRoads = {{{"usb", "USB"},
                                                 {"ata", "IDE"},
                                                 {"ide", "IDE"},
                                                 {"fw", "1394"},
                                                 {"nvme", "NVMe"},
                                                 {"mmc_host", "MMC"}}};
        constexpr std::array<Pair, 6> kNames = {{{"nvme", "NVMe"},
                                                 {"mmc", "MMC"},
                                                 {"vd", "VirtIO"},
                                                 {"loop", "Loop"},
                                                 {"md", "RAID"},
                                                 {"hd", "IDE"}}};
        const auto* road = std::find_if(kRoads.begin(), kRoads.end(),
                                        [this](const Pair& pair) { return LeadsThrough(road_, pair.first); });
        if (road != kRoads.end()) {
            return road->second;
        }
        const auto* named = std::find_if(kNames.begin(), kNames.end(),
                                         [this](const Pair& pair) { return name_.starts_with(pair.first); });
        return named == kNames.end() ? "SCSI" : named->second;
    }

    [[nodiscard]] std::string Media() const {
        if (name_.starts_with("loop")) {
            return "Disk image";
        }
        return Text(folder_ / "removable") == "1" ? "Removable media" : "Fixed hard disk media";
    }

    [[nodiscard]] std::vector<DiskPart> Parts() const {
        std::vector<std::pair<std::uint64_t, DiskPart>> found;
        for (const fs::path& folder : FoldersIn(folder_)) {
            if (Exists(folder / "partition")) {
                found.emplace_back(
                    Number(folder / "partition"),
                    DiskPart{DevicePathOf(folder.filename()), Number(folder / "size") * kKernelSectorBytes});
            }
        }
        std::sort(found.begin(), found.end(), [](const auto& l, const auto& r) { return l.first < r.first; });
        std::vector<DiskPart> parts;
        parts.reserve(found.size());
        for (auto& [number, part] : found) {
            parts.push_back(std::move(part));
        }
        return parts;
    }

    fs::path folder_;
    std::string name_;
    UdevRecord udev_;
    std::string road_; ///< path of the device in the tree of busses
};

struct Place {
    std::size_t Kind = 0;
    std::string Name;

    bool operator<(const Place& other) const {
        if (Kind != other.Kind) {
            return Kind < other.Kind;
        }
        return Name.size() != other.Name.size() ? Name.size() < other.Name.size() : Name < other.Name;
    }
};

} // namespace

std::vector<DiskProperties> ListDisksIn(const std::string& sysFolder, const std::string& udevFolder) {
    std::vector<std::pair<Place, fs::path>> folders;
    for (const fs::path& folder : FoldersIn(fs::path(sysFolder) / "block")) {
        const std::string name = folder.filename();
        if (const auto kind = DiskKindOf(name)) {
            folders.emplace_back(Place{*kind, name}, folder);
        }
    }
    std::sort(folders.begin(), folders.end(), [](const auto& l, const auto& r) { return l.first < r.first; });
    std::vector<DiskProperties> disks;
    for (const auto& [place, folder] : folders) {
        const SysfsDisk disk(folder, udevFolder);
        if (disk.IsDisk()) {
            disks.push_back(disk.Properties());
        }
    }
    return disks;
}

std::vector<DiskProperties> ListDisks() { return ListDisksIn("/sys", "/run/udev/data"); }

} // namespace thntfs
