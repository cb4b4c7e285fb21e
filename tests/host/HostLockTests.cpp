#include <gtest/gtest.h>

#include "host/HostLock.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::host {
namespace {

TEST(HostLock, IsHeldByOne) {
    const test::TemporaryFolder folder;
    {
        const HostLock first(folder.path() / "config");
        EXPECT_TRUE(first.isHeld());
        EXPECT_FALSE(HostLock(folder.path() / "config").isHeld());
        EXPECT_TRUE(HostLock(folder.path() / "other").isHeld());
    }
    EXPECT_TRUE(HostLock(folder.path() / "config").isHeld());
}

TEST(HostLock, IsHeldWhereThereIsNoPlaceForIt) {
    const test::TemporaryFolder folder;
    const auto blocker = folder.write("file", "");
    EXPECT_TRUE(HostLock(blocker / "below").isHeld());
}

}  // namespace
}  // namespace zelto::host
