#pragma once

#include "support/VolumeBuilderBytes.h"

#include <memory>

namespace thntfs {
class Medium;
}

namespace thntfs::test {

/// A medium in memory. Its bytes can be shared with the test, which may change them between reads.
/// `deviceSectorBytes` 0 makes it an image file, anything else a device.
std::unique_ptr<Medium> MakeMemoryMedium(std::shared_ptr<ByteVector> bytes,
                                         std::uint32_t deviceSectorBytes = 0);

/// Writes bytes to a file, which is created or replaced. Throws std::runtime_error on failure.
void WriteFileBytes(const std::string& path, ConstBytes bytes);

} // namespace thntfs::test
