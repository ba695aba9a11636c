// The partition table with its chain, and both searches, over the input as a medium.

#include "FuzzSupport.h"
#include "partitions/PartitionSearch.h"
#include "partitions/PartitionTable.h"

using namespace thntfs;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::OpenPlainVolume(ConstBytes(data, std::min<std::size_t>(size, 1U << 17U)));
    ReadPartitionTable();
    fuzz::TakeEachIntoUse();
    for (const SearchMethod method : {SearchMethod::Quick, SearchMethod::Thorough}) {
        RunPartitionSearch(method, 0, Engine.SourceDisk.TotalSectors);
        fuzz::TakeEachIntoUse();
    }
    return 0;
}
