// All that names a volume without a search, both searches with the starts that follow from what they meet,
// and the look at each volume, over the input as a medium.

#include "FuzzSupport.h"
#include "partitions/ExamineVolumes.h"
#include "partitions/PartitionSearch.h"
#include "partitions/ReadVolumes.h"
#include "partitions/VolumeList.h"

using namespace thntfs;

namespace {

void TakeEach() {
    for (const ListedVolume& volume : ListVolumes()) {
        if (volume.Candidate != nullptr) {
            LoadVolumeParams(*volume.Candidate);
            LocateTable();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::OpenPlainVolume(ConstBytes(data, std::min<std::size_t>(size, 1U << 17U)));
    Engine.ScanRunFlag = 0;
    ReadVolumes();
    TakeEach();
    for (const SearchMethod method : {SearchMethod::Quick, SearchMethod::Thorough}) {
        Engine.ScanRunFlag = 1;
        SearchVolumes(method, 0, Engine.SourceDisk.TotalSectors);
        Engine.ScanRunFlag = 0;
        TakeEach();
    }
    return 0;
}
