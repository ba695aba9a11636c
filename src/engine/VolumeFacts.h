#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

/// Where a volume was named.
enum class VolumeSource : std::uint8_t {
    Mbr,         ///< the classic partition table or its chain
    Gpt,         ///< the GUID partition table at the medium's beginning
    GptBackup,   ///< its copy at the medium's end
    WholeMedium, ///< the medium is the volume
    Search,      ///< found in the sectors
    SavedList,   ///< in a file of an earlier search
};

/// What is known of a candidate beside what is stored of it.
struct VolumeFacts {
    VolumeSource Source = VolumeSource::SavedList;
    bool Examined = false;     ///< what follows has been looked for
    bool Verified = false;     ///< its Master File Table or the mirror stands where the candidate says
    std::uint64_t Records = 0; ///< of its Master File Table, 0 where unknown
    std::u16string Label;      ///< as it stands on the medium, anything may be in it
};

} // namespace thntfs
