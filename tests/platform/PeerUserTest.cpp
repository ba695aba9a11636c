#include "platform/system/PeerUser.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

namespace thntfs::test {
namespace {

// The system notes the user of whoever makes the pair.
TEST(PeerUser, OnlyThisUsersProcessesCount) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    EXPECT_TRUE(PeerIsThisUser(ends[0]));
    if (::seteuid(65534) == 0 && ::getuid() == 0) { // root alone can be another one
        EXPECT_FALSE(PeerIsThisUser(ends[0]));
        ASSERT_EQ(::seteuid(0), 0);
    }
    ::close(ends[0]);
    ::close(ends[1]);
    EXPECT_FALSE(PeerIsThisUser(-1));
}

} // namespace
} // namespace thntfs::test
