#include <gtest/gtest.h>

#include "tests/support/Vectors.hpp"
#include "ui/TimerText.hpp"

namespace zelto::test {
namespace {

TEST(TimerText, CountsDownAndThenUp) {
    for (const auto& row : vectors("timer_text").at("vectors")) {
        const std::string expected = row.at("text");
        EXPECT_EQ(
            ui::timerText({row.at("remaining_s").get<double>()}, {0}),
            expected.substr(0, expected.find(' ')));
    }
    EXPECT_EQ(ui::timerText({0.5}, {0}), "0:01");
    EXPECT_EQ(ui::timerText({0}, {0.5}), "0:00");
    EXPECT_EQ(ui::timerText({0}, {1}), "0:01");
}

TEST(TimerText, ChangesExactlyWhenItSays) {
    for (const double left : {10.0, 9.25, 0.5, 0.0, -0.25, -1.0}) {
        const Date end{100}, now{100 - left};
        const Date next = ui::nextTimerChange(end, now);
        EXPECT_GT(next, now);
        EXPECT_NE(ui::timerText(end, next), ui::timerText(end, now)) << left;
        EXPECT_LE(next - now, 1.0) << left;
    }
}

}  // namespace
}  // namespace zelto::test
