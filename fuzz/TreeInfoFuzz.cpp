// A saved tree scan information file, loaded, and all that a user may do with what it gives.

#include "FuzzSupport.h"
#include "scaninfo/TreeInfoFile.h"

using namespace thntfs;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Engine.ScanRunFlag = 1;
    if (LoadTreeInfo(fuzz::WriteInfoFile(ConstBytes(data, size))).Done) {
        fuzz::WalkAndRead();
    }
    ResetEngineState();
    return 0;
}
