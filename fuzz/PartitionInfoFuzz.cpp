// A saved partition scan information file, loaded, and all that a user may do with what it gives.

#include "FuzzSupport.h"
#include "scaninfo/PartitionInfoFile.h"

using namespace thntfs;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Engine.ScanRunFlag = 1;
    if (LoadPartitionInfo(fuzz::WriteInfoFile(ConstBytes(data, size)), fuzz::TakeEachIntoUse).Done) {
        fuzz::WalkAndRead();
    }
    ResetEngineState();
    return 0;
}
