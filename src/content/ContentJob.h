#pragma once

#include "platform/system/Bytes.h"

#include <cstdint>

namespace thntfs {

/// Bytes that the clusters of a volume can hold at the most: the volume's or the medium's size, whichever is
/// more. What a record claims beyond that can't be true.
std::uint64_t VolumeByteLimit();

/// The gate between two pieces: true where a saving job has been stopped by ScanRunFlag. A preview runs
/// outside a job and is never stopped.
bool ContentStopped();

/// Sets the progress pair to the bytes written of the file's size and reports it, but not from a preview.
void ReportContentProgress(std::uint64_t size);

/// The buffer for pieces of a file's exact content: 1 MiB at a page's border, where the system copies
/// fastest. It is one for all files, so its bytes are good until the next is asked for. Throws
/// std::bad_alloc.
Bytes ContentBuffer();

} // namespace thntfs
