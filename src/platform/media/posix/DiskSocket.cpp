#include "platform/media/posix/DiskSocket.h"

#include "platform/media/DiskHelper.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>

namespace thntfs {

namespace {

constexpr std::size_t kMostReasonBytes = 1000;

/// Room for one descriptor beside a message.
struct alignas(cmsghdr) DescriptorSpace {
    std::array<char, CMSG_SPACE(sizeof(int))> Bytes{};
};

bool IsReadable(int socket, int milliseconds) {
    pollfd waiting{socket, POLLIN, 0};
    int found = 0;
    do {
        found = ::poll(&waiting, 1, milliseconds);
    } while (found < 0 && errno == EINTR);
    return found > 0;
}

void Attach(msghdr& message, DescriptorSpace& space, int descriptor) {
    message.msg_control = space.Bytes.data();
    message.msg_controllen = space.Bytes.size();
    cmsghdr* head = CMSG_FIRSTHDR(&message);
    head->cmsg_level = SOL_SOCKET;
    head->cmsg_type = SCM_RIGHTS;
    head->cmsg_len = CMSG_LEN(sizeof descriptor);
    std::memcpy(CMSG_DATA(head), &descriptor, sizeof descriptor);
}

FileDescriptor AttachedTo(msghdr& message) {
    const cmsghdr* head = CMSG_FIRSTHDR(&message);
    int descriptor = -1;
    if (head != nullptr && head->cmsg_level == SOL_SOCKET && head->cmsg_type == SCM_RIGHTS &&
        head->cmsg_len == CMSG_LEN(sizeof descriptor)) {
        std::memcpy(&descriptor, CMSG_DATA(head), sizeof descriptor);
    }
    return FileDescriptor(descriptor);
}

} // namespace

bool SendAnswer(int socket, const DiskAnswer& answer) {
    std::string bytes(reinterpret_cast<const char*>(&answer.Code), sizeof answer.Code);
    bytes += answer.Reason.substr(0, kMostReasonBytes);
    iovec part{bytes.data(), bytes.size()};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    DescriptorSpace space;
    if (answer.Disk.IsOpen()) {
        Attach(message, space, answer.Disk.Get());
    }
    return ::sendmsg(socket, &message, MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

bool ReceiveAnswer(int socket, DiskAnswer& answer) {
    std::array<char, sizeof answer.Code + kMostReasonBytes> bytes{};
    iovec part{bytes.data(), bytes.size()};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    DescriptorSpace space;
    message.msg_control = space.Bytes.data();
    message.msg_controllen = space.Bytes.size();
    const ssize_t got = ::recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
    if (got < static_cast<ssize_t>(sizeof answer.Code)) {
        return false;
    }
    std::memcpy(&answer.Code, bytes.data(), sizeof answer.Code);
    answer.Reason.assign(bytes.data() + sizeof answer.Code,
                         static_cast<std::size_t>(got) - sizeof answer.Code);
    answer.Disk = AttachedTo(message);
    return answer.Disk.IsOpen() == (answer.Code == kErrorNone);
}

const char* WordOf(DiskUse use) { return use == DiskUse::Reading ? "read" : "write"; }

bool AwaitDiskRequest() {
    char word = 0;
    return IsReadable(kHelperSocket, -1) && ::recv(kHelperSocket, &word, 1, 0) == 1;
}

bool IsDiskAwaited() { return !IsReadable(kHelperSocket, 0); } // readable now means ended

bool HandOverDisk(const DiskAnswer& answer) { return SendAnswer(kHelperSocket, answer); }

} // namespace thntfs
