#include "scaninfo/PartitionInfoFile.h"

#include "engine/EngineState.h"
#include "scaninfo/ScanInfoJob.h"

namespace thntfs {

ScanInfoResult SavePartitionInfo(const std::string& path) {
    return RunScanInfoSave(
        ScanInfoPlaceOf(path, kPartitionInfoExtension), kPartitionInfoTexts,
        [](ScanInfoWriter& writer) { PutMediumAndCandidates(writer, kPartitionInfoMagic); });
}

ScanInfoResult LoadPartitionInfo(const std::string& path, const std::function<void()>& choose) {
    const ScanInfoPlace place = ScanInfoPlaceOf(path);
    LogScanInfoLoad(place);
    ResetEngineState();
    return RunScanInfoLoad(place, kPartitionInfoTexts, [&choose](ScanInfoReader& reader) {
        TakeMediumAndCandidates(reader, kPartitionInfoMagic);
        OpenDescribedMedium();
        if (choose) {
            choose();
        }
    });
}

} // namespace thntfs
