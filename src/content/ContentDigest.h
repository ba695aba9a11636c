#pragma once

#include "platform/system/Bytes.h"
#include "platform/system/Sha256.h"

#include <cstdint>
#include <string>

namespace thntfs {

/// The SHA-256 of a file's bytes on their way out, holes as zeros.
class ContentDigest {
public:
    void Add(ConstBytes bytes);
    void AddHole(std::uint64_t bytes);

    /// The file in hand gets none.
    void Leave() { left_ = true; }

    /// The digest of what was added since the last call; empty where there is none.
    std::string Take();

private:
    Sha256 hash_;
    bool left_ = false;
};

} // namespace thntfs
