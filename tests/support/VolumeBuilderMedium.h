#pragma once

#include "platform/media/Medium.h"
#include "support/VolumeBuilderBytes.h"

namespace thntfs::test {

/// A medium in memory. Its bytes can be shared with the test, which may change them between reads.
class MemoryMedium : public Medium {
public:
    /// `deviceSectorBytes` 0 makes it an image file, anything else a device.
    explicit MemoryMedium(ByteVector bytes, std::uint32_t deviceSectorBytes = 0);
    explicit MemoryMedium(std::shared_ptr<ByteVector> bytes, std::uint32_t deviceSectorBytes = 0);

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override;
    [[nodiscard]] std::uint64_t SizeBytes() const override { return bytes_->size(); }
    [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return deviceSectorBytes_; }

private:
    std::shared_ptr<ByteVector> bytes_;
    std::uint32_t deviceSectorBytes_;
};

/// Writes bytes to a file, which is created or replaced. Throws std::runtime_error on failure.
void WriteFileBytes(const std::string& path, ConstBytes bytes);

} // namespace thntfs::test
