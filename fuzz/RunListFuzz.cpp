// The run list decoder. Decoding must end, within its buffer, with no more runs than bytes.

#include "engine/RunList.h"

#include <cstdlib>
#include <vector>

using namespace thntfs;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::uint8_t> buffer(data, data + size);
    std::vector<MftExtent> extents;
    DecodeRunList(buffer, 0, extents);
    DecodeRunList(buffer, size / 2, extents);
    if (extents.size() > 2 * size) {
        std::abort();
    }
    return 0;
}
