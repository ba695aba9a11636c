#pragma once

namespace thntfs {

class CopyHost;
class MessageTarget;
struct CopyJob;

// What the thread of a copy does: copies from Engine.SourceDisk to Engine.TargetDisk, puts down in the log
// what came of it, tells its dialog the end by WM_COPY_FINISHED, and then closes both media. A fatal failure
// is told as aborted.

void CloneThreadProc(CopyJob& job, CopyHost& host, MessageTarget& dialog);
void ImageThreadProc(CopyJob& job, CopyHost& host, MessageTarget& dialog);

} // namespace thntfs
