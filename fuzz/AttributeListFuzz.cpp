// A volume whose table and attribute lists come from the input: the table is located, scanned, listed and
// read.

#include "FuzzSupport.h"
#include "engine/LocateMft.h"
#include "scans/BasicScan.h"

using namespace thntfs;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::OpenPlainVolume(ConstBytes(data, std::min<std::size_t>(size, 1U << 16U)));
    LocateMft();
    fuzz::ScanAndRead([] { BasicScan(fuzz::kFarReach); });
    return 0;
}
