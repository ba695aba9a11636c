#pragma once

namespace thntfs {

class CMainFrame;

// The threads of the two scans: from a volume in work to a filled tree. Each sends its lines to the log and
// ends with WM_JOB_FINISHED, or with WM_JOB_FAILED where the catalogue can't be made or opened again. What a
// stopped scan has found is shown too.

void BasicScanThread(CMainFrame& frame);
void TurboScanThread(CMainFrame& frame);

} // namespace thntfs
