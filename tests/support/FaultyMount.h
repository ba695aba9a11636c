#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace thntfs::test {

/// An image shown as a file whose reads fail at chosen places with EIO, to a program under test as to any
/// other. The destructor takes it away.
class FaultyMount {
public:
    struct Setup {
        std::vector<std::pair<std::uint64_t, std::uint64_t>> BadBytes; ///< offset and size
        std::uint64_t SlowMicroseconds = 0;                            ///< that each read takes
        std::string LogPath; ///< gets a line "OFFSET SIZE ok" or "OFFSET SIZE bad" for each read
    };

    /// Mounts at a folder, which must exist. Null where that can't be done here: no /dev/fuse, no libfuse3,
    /// no rights.
    static std::unique_ptr<FaultyMount> Start(const std::string& image, const std::string& folder,
                                              const Setup& setup);

    FaultyMount(std::string folder, int process);
    ~FaultyMount();
    FaultyMount(const FaultyMount&) = delete;
    FaultyMount& operator=(const FaultyMount&) = delete;

    /// Path of the file.
    [[nodiscard]] std::string Path() const { return folder_ + "/disk"; }

private:
    std::string folder_;
    int process_;
};

inline constexpr const char* kNoFaultyMount = "there is no /dev/fuse or no libfuse3 here";

} // namespace thntfs::test
