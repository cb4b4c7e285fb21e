#include <gtest/gtest.h>

#include "host/FileNews.hpp"

namespace zelto::host {
namespace {

using Kinds = std::set<std::string>;
constexpr Date start{800'000'000};

TEST(FileNews, TakesTogetherWhatFollowsTheFirst) {
    FileNews news;
    EXPECT_EQ(news.due(start), Kinds{});
    EXPECT_EQ(news.nextInstant(), std::nullopt);
    news.changed({"a"});
    EXPECT_EQ(news.due(start), Kinds{"a"});
    EXPECT_EQ(news.nextInstant(), std::nullopt);
    news.changed({"b"});
    news.changed({"a", "c"});
    EXPECT_EQ(news.due(start + 0.1), Kinds{});
    EXPECT_EQ(news.nextInstant(), start + 0.3);
    EXPECT_EQ(news.due(start + 0.3), (Kinds{"a", "b", "c"}));
    EXPECT_EQ(news.nextInstant(), std::nullopt);
    // Of those that never end, three a second.
    news.changed({"a"});
    EXPECT_EQ(news.nextInstant(), start + 0.3 + FileNews::together);
    EXPECT_EQ(news.due(start + 100), Kinds{"a"});
}

TEST(FileNews, IsNotHeldUpByAClockThatIsSetBack) {
    FileNews news;
    news.changed({"a"});
    news.due(start);
    news.changed({"a"});
    EXPECT_EQ(news.due(start - 3600), Kinds{"a"});
}

}  // namespace
}  // namespace zelto::host
