#include <limits>

#include <gtest/gtest.h>

#include "widget/Common/Rounding.hpp"

namespace zelto::test {

using namespace widget;
namespace {

TEST(Rounding, GoesAwayFromZeroAtHalves) {
    EXPECT_EQ(nearestInteger(12.5), 13);
    EXPECT_EQ(nearestInteger(-12.5), -13);
    EXPECT_EQ(nearestInteger(12.4999), 12);
}

TEST(Rounding, HoldsForValuesThatNoIntegerHas) {
    EXPECT_EQ(nearestInteger(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(nearestInteger(1e300), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(nearestInteger(-1e300), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(nearestInteger(0x1p63), std::numeric_limits<std::int64_t>::max());
}

TEST(Percent, IsRoundedInRingsAndCutInLabels) {
    EXPECT_EQ(roundedPercent(0.999), "100%");
    EXPECT_EQ(truncatedPercent(0.999), "99%");
    EXPECT_EQ(roundedPercent(-0.3), "-30%");
    EXPECT_EQ(truncatedPercent(0.678), "67%");
    EXPECT_EQ(truncatedPercent(-0.009), "0%");
}

}  // namespace
}  // namespace zelto::test
