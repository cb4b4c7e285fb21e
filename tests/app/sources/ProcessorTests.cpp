#include <gtest/gtest.h>

#include "sources/Processor.hpp"

namespace zelto::sources {
namespace {

TEST(ProcessorHistory, TwoReadingsGiveTheLoadBetweenThem) {
    ProcessorHistory history;
    EXPECT_EQ(history.current(), 0);
    history.add({.user = 100, .system = 50, .idle = 850, .nice = 0});
    EXPECT_TRUE(history.values().empty());
    history.add({.user = 150, .system = 70, .idle = 900, .nice = 5});
    EXPECT_EQ(history.values(), std::vector{0.6});
    EXPECT_EQ(history.current(), 0.6);
}

TEST(ProcessorHistory, KeepsTheLastFortyOldestFirst) {
    ProcessorHistory history;
    for (std::uint64_t i = 0; i <= 50; ++i) history.add({.user = i * i, .idle = 10'000 - i * i + 100 * i});
    ASSERT_EQ(history.values().size(), ProcessorHistory::longest);
    // Each step has 100 ticks, of which 2i + 1 are busy.
    EXPECT_DOUBLE_EQ(history.values().front(), 0.21);
    EXPECT_DOUBLE_EQ(history.values().back(), 0.99);
}

TEST(ProcessorHistory, TicksThatStandStillOrStepBackAreNoLoad) {
    ProcessorHistory history;
    history.add({.user = 100, .idle = 100});
    history.add({.user = 100, .idle = 100});
    history.add({.user = 10, .idle = 10});
    EXPECT_TRUE(history.values().empty());
    history.add({.user = 20, .idle = 20});
    EXPECT_EQ(history.values(), std::vector{0.5});
}

TEST(ProcessorHistory, AfterAPauseTheNextReadingBeginsAnew) {
    ProcessorHistory history;
    history.add({.user = 0, .idle = 0});
    history.add({.user = 10, .idle = 10});
    history.pause();
    history.add({.user = 5000, .idle = 10});
    EXPECT_EQ(history.values(), std::vector{0.5});
}

}  // namespace
}  // namespace zelto::sources
