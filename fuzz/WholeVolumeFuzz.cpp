// A disk with a volume, as the commands take it: the volume is found, located, scanned both ways, listed and
// read.

#include "FuzzSupport.h"
#include "engine/LocateMft.h"
#include "partitions/PartitionTable.h"
#include "scans/BasicScan.h"
#include "scans/TurboScan.h"

using namespace thntfs;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::OpenPlainVolume(ConstBytes(data, std::min<std::size_t>(size, 1U << 18U)));
    if (!ReadPartitionTable()) {
        return 0;
    }
    LoadVolumeParams(Engine.SourceDisk.Partitions.front());
    if (LocateMft()) {
        fuzz::ScanAndRead([] { BasicScan(fuzz::kFarReach); });
    }
    fuzz::ScanAndRead([] { TurboScan(fuzz::kFarReach); });
    return 0;
}
