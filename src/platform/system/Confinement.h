#pragma once

#include <cstdint>

namespace thntfs {

/// What a process may use from now on, beyond which the system ends it or refuses.
struct ProcessBounds {
    std::uint64_t CpuSeconds = 0;
    std::uint64_t MemoryBytes = 0; ///< of addresses; not where a sanitizer needs them for itself
};

/// Takes from this process, for good, what none needs that turns one stream of bytes into another: it makes
/// no file grow, leaves no memory image, opens few files, gains no rights by starting a program, has none but
/// its standard streams open, and dies with the process that started it. False where the system refuses.
bool ConfineProcess(const ProcessBounds& bounds);

} // namespace thntfs
