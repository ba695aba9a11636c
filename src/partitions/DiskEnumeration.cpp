#include "partitions/DiskEnumeration.h"

#include "platform/media/DiskIdentity.h"
#include "platform/system/SizeText.h"
#include "platform/system/Text.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace thntfs {

namespace {

constexpr std::string_view kDeviceFolder = "/dev/";
constexpr const char* kNotAvailable = "N/A";
constexpr std::size_t kHexSerialDigits = 40; // the 20 bytes that an ATA disk has for it

bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

std::uint8_t ValueOf(char c) {
    if (c >= '0' && c <= '9') {
        return static_cast<std::uint8_t>(c - '0');
    }
    const bool upper = c >= 'A' && c <= 'Z';
    const bool lower = c >= 'a' && c <= 'z';
    return upper || lower ? static_cast<std::uint8_t>((upper ? c - 'A' : c - 'a') + 10) : std::uint8_t{0};
}

std::string TrimmedOf(const std::string& text, const char* set) {
    const std::size_t first = text.find_first_not_of(set);
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(set) + 1 - first);
}

/// Text that is valid everywhere, whatever bytes a disk has in its fields.
std::string CleanText(const std::string& text) { return NarrowText(WideText(text)); }

std::string SerialText(const std::string& serial) {
    const bool hexadecimalWords =
        serial.size() == kHexSerialDigits && std::all_of(serial.begin(), serial.end(), IsHexDigit);
    if (hexadecimalWords) {
        return DecodeDiskSerial(serial);
    }
    return serial.empty() ? kNotAvailable : serial;
}

} // namespace

std::vector<DiskInfo> EnumerateDisks() {
    std::vector<DiskInfo> disks;
    for (const DiskProperties& listed : ListDisks()) {
        if (listed.BytesPerSector == 0) {
            continue; // an empty drive need not be opened
        }
        const DiskSize size = QueryDiskBytes(listed.Path);
        disks.push_back(*DescribeDisk(listed, size.Bytes));
        disks.back().OpenError = size.OpenError;
        disks.back().AccessError = size.AccessError;
    }
    return disks;
}

DiskInfo DiskOfDevice(const std::string& path) {
    std::vector<DiskProperties> disks = ListDisks();
    // Two devices may show one medium: the one that was named goes first.
    std::stable_partition(disks.begin(), disks.end(),
                          [&path](const DiskProperties& listed) { return listed.Path == path; });
    for (const DiskProperties& listed : disks) {
        if (SameMedium(listed.Path, path)) {
            if (auto disk = DescribeDisk(listed, listed.SizeBytes)) {
                return *disk;
            }
        }
    }
    DiskInfo unlisted;
    unlisted.Path = path;
    unlisted.Name = path;
    unlisted.Serial = kNotAvailable;
    return unlisted;
}

std::optional<DiskInfo> DescribeDisk(const DiskProperties& disk, std::uint64_t sizeBytes) {
    if (disk.BytesPerSector == 0) {
        return std::nullopt;
    }
    const std::uint64_t bytes = sizeBytes != 0 ? sizeBytes : disk.SizeBytes;
    const bool onUsb = disk.Interface == "USB";
    DiskInfo info;
    info.Path = disk.Path;
    info.Name =
        CleanText(disk.Path.starts_with(kDeviceFolder) ? disk.Path.substr(kDeviceFolder.size()) : disk.Path);
    info.BytesPerSector = std::to_string(disk.BytesPerSector);
    info.TotalSectors = std::to_string(bytes / disk.BytesPerSector);
    info.Size = DiskSizeText(bytes);
    info.Model = onUsb ? "USB mobile disk " : CleanText(disk.Model);
    info.MediaType = onUsb ? "Removable media" : CleanText(disk.Media);
    std::replace(info.MediaType.begin(), info.MediaType.end(), '\t', ' ');
    info.InterfaceType = CleanText(disk.Interface);
    info.TotalCylinders = std::to_string(disk.Cylinders);
    info.TotalHeads = std::to_string(disk.Heads);
    info.Serial = CleanText(SerialText(disk.Serial));
    info.Revision = TrimmedOf(CleanText(disk.Revision), "_");
    return info;
}

std::string DecodeDiskSerial(std::string text) {
    for (std::size_t i = 0; i + 4 <= text.size(); i += 4) {
        std::swap(text[i], text[i + 2]);
        std::swap(text[i + 1], text[i + 3]);
    }
    const std::string digits = TrimmedOf(text, "20&._");
    std::string serial = " ";
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const std::uint8_t low = i + 1 < digits.size() ? ValueOf(digits[i + 1]) : std::uint8_t{0};
        const auto byte =
            static_cast<char>(static_cast<std::uint8_t>((ValueOf(digits[i]) << 4U) | (low & 15U)));
        if ((byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z')) {
            serial += byte;
        }
    }
    return serial;
}

} // namespace thntfs
