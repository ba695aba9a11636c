#include "content/ExactStream.h"

#include <algorithm>

namespace thntfs {

std::size_t ExactStream::Read(std::uint64_t offset, Bytes buffer, MissingData& missing) {
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), size_ - std::min(size_, offset)));
    if (wanted != 0) {
        Fill(offset, buffer, wanted, missing);
    }
    return wanted;
}

} // namespace thntfs
