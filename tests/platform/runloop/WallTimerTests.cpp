#include <gtest/gtest.h>

#include "runloop/WallTimer.hpp"
#include "tests/support/Readable.hpp"

namespace zelto::host {
namespace {

TEST(WallTimer, GoesOffAtItsInstantAndNotWithoutOne) {
    runloop::WallTimer timer;
    EXPECT_EQ(timer.take(), runloop::WallTimer::Event::none);
    timer.arm(std::nullopt);
    EXPECT_FALSE(test::canBeRead(timer.fd(), 0));
    const Date instant = Date::now() + 0.02;
    timer.arm(instant);
    EXPECT_TRUE(test::canBeRead(timer.fd(), 30'000));
    EXPECT_GE(Date::now(), instant);
    EXPECT_EQ(timer.take(), runloop::WallTimer::Event::expired);
    EXPECT_FALSE(test::canBeRead(timer.fd(), 0));
}

TEST(WallTimer, AnInstantThatHasPassedGoesOffAtOnce) {
    runloop::WallTimer timer;
    for (const double instant : {-1e300, 0.0, -978307200.0}) {
        timer.arm(Date{instant});
        EXPECT_TRUE(test::canBeRead(timer.fd(), 30'000)) << instant;
        EXPECT_EQ(timer.take(), runloop::WallTimer::Event::expired);
    }
    // Later than any clock goes.
    timer.arm(Date{1e300});
    EXPECT_FALSE(test::canBeRead(timer.fd(), 0));
    // Its replacement holds.
    timer.arm(Date{0});
    timer.arm(std::nullopt);
    EXPECT_FALSE(test::canBeRead(timer.fd(), 0));
}

}  // namespace
}  // namespace zelto::host
