#include "platform/files/InstanceLock.h"
#include "platform/files/posix/FileDescriptor.h"
#include "platform/system/posix/ErrnoMap.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace thntfs {

class InstanceLock::Holder {
public:
    explicit Holder(int socket)
        : Socket(socket) {}

    FileDescriptor Socket;
};

InstanceLock::InstanceLock() = default;
InstanceLock::~InstanceLock() = default;

// A socket's name in the abstract space, which begins with a zero byte, stands in no folder and is free again
// when the last descriptor is closed.
ErrorCode InstanceLock::Take(const std::string& name) {
    const std::string unique = name + "-" + std::to_string(::getuid());
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (unique.size() + 1 > sizeof address.sun_path) {
        return kErrorInvalidName;
    }
    std::memcpy(address.sun_path + 1, unique.data(), unique.size());
    auto holder = std::make_unique<Holder>(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!holder->Socket.IsOpen()) {
        return FileErrorOfErrno(errno);
    }
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + unique.size());
    if (::bind(holder->Socket.Get(), reinterpret_cast<const sockaddr*>(&address), length) != 0) {
        return errno == EADDRINUSE ? kErrorAlreadyExists : FileErrorOfErrno(errno);
    }
    holder_ = std::move(holder);
    return kErrorNone;
}

} // namespace thntfs
