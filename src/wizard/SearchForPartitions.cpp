#include "wizard/SearchForPartitions.h"

#include "scaninfo/JobLog.h"
#include "wizard/ChooseSectorRange.h"
#include "wizard/DiskScanMode.h"
#include "wizard/LogicalDrivesFound.h"

namespace thntfs {

bool SearchForPartitions(std::uint64_t totalSectors, QWidget* owner) {
    CDiskScanMode mode(owner);
    if (mode.exec() != QDialog::Accepted) {
        return false;
    }
    SearchRequest request{mode.ScanMethod, 0, totalSectors};
    if (request.ScanMethod == SearchMethod::Thorough) {
        CChooseSectorRange range(owner, totalSectors);
        if (range.exec() != QDialog::Accepted) {
            return false;
        }
        request.FirstSector = range.StartSector;
        request.EndSector = range.EndSector;
    }
    LogSearchStarted(request.FirstSector, request.EndSector);
    CLogicalDrivesFound(owner, request).Run();
    return true;
}

} // namespace thntfs
