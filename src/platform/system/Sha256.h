#pragma once

#include "platform/system/Bytes.h"

#include <cstdint>
#include <memory>
#include <string>

namespace thntfs {

/// The SHA-256 of bytes that come piece by piece. One object serves many files, one behind the other.
class Sha256 {
public:
    /// Throws std::bad_alloc.
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void Add(ConstBytes bytes);

    /// The digest of what was added since the last call, 64 small hexadecimal digits.
    std::string Take();

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace thntfs
