#include "support/VolumeBuilderMedium.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace thntfs::test {

MemoryMedium::MemoryMedium(ByteVector bytes, std::uint32_t deviceSectorBytes)
    : MemoryMedium(std::make_shared<ByteVector>(std::move(bytes)), deviceSectorBytes) {}

MemoryMedium::MemoryMedium(std::shared_ptr<ByteVector> bytes, std::uint32_t deviceSectorBytes)
    : bytes_(std::move(bytes))
    , deviceSectorBytes_(deviceSectorBytes) {}

ErrorCode MemoryMedium::ReadAt(std::uint64_t offset, Bytes buffer) {
    const ConstBytes part = Part(*bytes_, offset, buffer.size());
    std::copy(part.begin(), part.end(), buffer.begin());
    return kErrorNone;
}

void WriteFileBytes(const std::string& path, ConstBytes bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) {
        throw std::runtime_error("can't write " + path);
    }
}

} // namespace thntfs::test
