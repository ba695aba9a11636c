#include "platform/files/InstanceLock.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>

namespace thntfs::test {
namespace {

TEST(InstanceLock, IsHeldByOneAndGoesWithItsHolder) {
    const std::string name = "th-ntfs-test-" + std::to_string(std::rand());
    std::optional<InstanceLock> first(std::in_place);
    EXPECT_EQ(first->Take(name), kErrorNone);
    InstanceLock second;
    EXPECT_EQ(second.Take(name), kErrorAlreadyExists);
    first.reset();
    EXPECT_EQ(second.Take(name), kErrorNone);
    EXPECT_EQ(InstanceLock().Take(std::string(200, 'x')), kErrorInvalidName);
}

} // namespace
} // namespace thntfs::test
