#pragma once

#include "support/Manifest.h"

#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

namespace thntfs::test {

/// One partition of one packed image, under test.
struct VolumeCase {
    PackedImage Image;
    LayoutRow Layout;

    /// The words that choose it, behind the command.
    [[nodiscard]] std::vector<std::string> Words(const std::string& command) const;
};

/// All partitions of all packed images.
std::vector<VolumeCase> AllVolumes();

/// What a failed test prints of its case.
inline void PrintTo(const VolumeCase& volume, std::ostream* out) {
    *out << volume.Image.Name << volume.Layout.Number;
}

/// What `list --recursive --json` says of a volume.
class VolumeListing {
public:
    /// Throws std::runtime_error where the program fails or a line is no JSON.
    explicit VolumeListing(const VolumeCase& volume);

    /// The entry that a row speaks of; null where there is none.
    [[nodiscard]] const nlohmann::json* Find(const ManifestRow& row) const;

    /// Path of the file that `save` makes of an entry, without a number.
    [[nodiscard]] static std::string TargetPath(const std::string& path);

    std::vector<nlohmann::json> Entries;

private:
    std::multimap<std::string, std::size_t> byPath_;
    std::multimap<std::string, std::size_t> byName_;
};

} // namespace thntfs::test
