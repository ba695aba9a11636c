#pragma once

namespace thntfs {

/// Whether the process at the other end of a local socket belongs to the user of this one. False where the
/// system doesn't tell.
bool PeerIsThisUser(int socket);

} // namespace thntfs
