#include <gtest/gtest.h>

#include "runloop/LogLimiter.hpp"

namespace zelto::host {
namespace {

using namespace std::chrono_literals;

TEST(LogLimiter, LetsABurstThroughAndThenSoManyAMinute) {
    runloop::LogLimiter limiter(3, 2);
    const auto start = runloop::LogLimiter::Clock::now();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(limiter.pass("a", start), "a");
    for (int i = 0; i < 5; ++i) EXPECT_EQ(limiter.pass("b", start + 10s), std::nullopt);
    EXPECT_EQ(limiter.pass("c", start + 30s), "c (5 lines before this one were left out)");
    EXPECT_EQ(limiter.pass("d", start + 31s), std::nullopt);
    EXPECT_EQ(limiter.pass("e", start + 3600s), "e (1 lines before this one were left out)");
    EXPECT_EQ(limiter.pass("f", start + 3600s), "f");
}

TEST(LogLimiter, ALineIsOneLine) {
    runloop::LogLimiter limiter;
    EXPECT_EQ(limiter.pass("a\nb\tc\x1B[31m"), "a b c [31m");
}

TEST(LogLimiter, CutsALongLineAtACharacter) {
    runloop::LogLimiter limiter;
    const std::string text = std::string(999, 'x') + "éé";
    EXPECT_EQ(limiter.pass(text), std::string(999, 'x') + "…");
    EXPECT_EQ(limiter.pass(std::string(1000, 'x')), std::string(1000, 'x'));
}

}  // namespace
}  // namespace zelto::host
