// The index block check and the harvest of its folders, by a Turbo Scan over the input.

#include "FuzzSupport.h"
#include "scans/TurboScan.h"

using namespace thntfs;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::OpenPlainVolume(ConstBytes(data, std::min<std::size_t>(size, 1U << 16U)));
    fuzz::ScanAndRead([] { TurboScan(fuzz::kFarReach); });
    return 0;
}
