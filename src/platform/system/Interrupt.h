#pragma once

#include <atomic>
#include <cstdint>

namespace thntfs {

/// From now on the first interrupt (Ctrl+C, a request to end, the terminal closed) stores 0 to the flag; the
/// next one ends the program at once. What the program was started to ignore stays ignored. The flag must
/// live as long as the program. A later call starts anew, with another flag if need be.
///
/// Writing to a pipe that nobody reads any more fails with kErrorBrokenPipe instead of ending the program,
/// and a file that would grow beyond what the user may write fails with kErrorFileTooLarge.
void OnInterrupt(std::atomic<std::uint32_t>& flag);

/// True since the first interrupt after OnInterrupt.
bool WasInterrupted();

/// Stores 1 to the flag that OnInterrupt was given, or 0 where an interrupt has come since. One that comes at
/// the same moment isn't lost.
void SetUnlessInterrupted(std::atomic<std::uint32_t>& flag);

/// A descriptor for a loop that waits for several things at once: it becomes readable with the first
/// interrupt after OnInterrupt and stays so until OnInterrupt is called anew. The same one each time; nobody
/// reads from it or closes it. -1 where the system gives none.
int InterruptDescriptor();

} // namespace thntfs
