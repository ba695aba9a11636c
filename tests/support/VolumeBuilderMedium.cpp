#include "support/VolumeBuilderMedium.h"

#include "platform/media/Medium.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace thntfs::test {

namespace {

class MemoryMedium final : public Medium {
public:
    MemoryMedium(std::shared_ptr<ByteVector> bytes, std::uint32_t deviceSectorBytes)
        : bytes_(std::move(bytes))
        , deviceSectorBytes_(deviceSectorBytes) {}

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override {
        const ConstBytes part = Part(*bytes_, offset, buffer.size());
        std::copy(part.begin(), part.end(), buffer.begin());
        return kErrorNone;
    }
    [[nodiscard]] std::uint64_t SizeBytes() const override { return bytes_->size(); }
    [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return deviceSectorBytes_; }

private:
    std::shared_ptr<ByteVector> bytes_;
    std::uint32_t deviceSectorBytes_;
};

} // namespace

std::unique_ptr<Medium> MakeMemoryMedium(std::shared_ptr<ByteVector> bytes, std::uint32_t deviceSectorBytes) {
    return std::make_unique<MemoryMedium>(std::move(bytes), deviceSectorBytes);
}

void WriteFileBytes(const std::string& path, ConstBytes bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) {
        throw std::runtime_error("can't write " + path);
    }
}

} // namespace thntfs::test
