#include "platform/system/PeerUser.h"

#include <sys/socket.h>
#include <unistd.h>

namespace thntfs {

bool PeerIsThisUser(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

} // namespace thntfs
