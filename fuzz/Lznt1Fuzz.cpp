// The decompressor and the chunk test, into targets of several sizes, each exactly as large as it says.

#include "content/Lznt1.h"

#include <cstdlib>
#include <vector>

using namespace thntfs;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::uint8_t> source(data, data + size);
    IsChunkChain(source);
    for (const std::size_t room : {std::size_t{0}, std::size_t{1}, std::size_t{4095}, std::size_t{65536}}) {
        std::vector<std::uint8_t> target(room);
        if (DecompressLznt1(source, target) > room) {
            std::abort();
        }
    }
    return 0;
}
