// A saved partition scan information file, loaded, and all that a user may do with what it gives.

#include "FuzzSupport.h"
#include "catalogue/Catalogue.h"
#include "engine/LocateMft.h"
#include "scaninfo/PartitionInfoFile.h"

using namespace thntfs;

namespace {

void TakeEachIntoUse() {
    for (const PartitionCandidate& candidate : Engine.SourceDisk.Partitions) {
        LoadVolumeParams(candidate);
        LocateMft();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Engine.ScanRunFlag = 1;
    if (LoadPartitionInfo(fuzz::WriteInfoFile(ConstBytes(data, size)), TakeEachIntoUse).Done) {
        fuzz::WalkCatalogue();
        fuzz::ReadContents();
    }
    CloseCatalogue();
    ResetEngineState();
    return 0;
}
