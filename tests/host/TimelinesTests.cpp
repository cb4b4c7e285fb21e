// When timelines are asked for, shown and stored, and when they are not.

#include <algorithm>

#include <gtest/gtest.h>

#include "host/Timelines.hpp"
#include "host/WidgetHost.hpp"
#include "tests/host/Hosted.hpp"

namespace zelto::host {

using namespace widgetkit;
namespace {

TEST_F(Hosted, CopiesOfAWidgetAreAskedForOnce) {
    start();
    for (int i = 0; i < 3; ++i) add("Battery", WidgetFamily::systemSmall);
    add("Battery", WidgetFamily::systemMedium);
    asked.clear();
    make();
    host->start();
    takeSeen();
    ASSERT_EQ(asked.size(), 2U);
    asked.pop_front();
    EXPECT_EQ(asked[0].requests.size(), 2U);
    answer("80 %");
    EXPECT_EQ(takeSeen(), Seen(4, "Battery shows 80 %"));
    // One that fails, fails for all of them.
    now = now + 300;
    host->wake();
    fail("it died");
    EXPECT_EQ(log.size(), 4U);
}

TEST_F(Hosted, WhatLooksTheSameIsNotStoredAgain) {
    std::size_t works = 0;
    onDisk = [&](const auto& work, const auto& then) {
        ++works;
        then(work());
    };
    make();
    start();
    add("Battery", WidgetFamily::systemSmall);
    answer("80 %");
    works = 0;
    const auto round = [&](const std::string& text) {
        now = now + 300;
        host->wake();
        answer(text);
        return std::exchange(works, 0);
    };
    EXPECT_EQ(round("80 %"), 0U);
    EXPECT_EQ(round("79 %"), 1U);
    EXPECT_EQ(round("79 %"), 0U);
    // Nor after a start.
    make();
    start();
    works = 0;
    answer("79 %");
    EXPECT_EQ(works, 0U);
}

TEST_F(Hosted, WhatComesForAHiddenWidgetIsStoredOnceItIsDrawn) {
    start();
    const auto battery = add("Battery", WidgetFamily::systemSmall);
    const auto isStored = [&] {
        return EntryStore(folder.path() / "cache").load(host->widgets()[0].look()).has_value();
    };
    host->setSeen(battery, false);
    takeSeen();
    answer("80 %");
    EXPECT_EQ(takeSeen(), Seen{});
    EXPECT_FALSE(isStored());
    host->setSeen(battery, true);
    EXPECT_EQ(takeSeen(), Seen{"Battery shows 80 %"});
    EXPECT_TRUE(isStored());
}

TEST_F(Hosted, AChangedFileAsksForItsWidgetsOnly) {
    offers_ = offered();
    offers_[0].files = {"/a", "/b"};
    offers_[1].files = {"/c"};
    start();
    add("Battery", WidgetFamily::systemSmall);
    answer("80 %");
    add("Clock", WidgetFamily::systemSmall);
    answer("14:05");
    for (const auto& [file, kind] :
         {std::pair{"/a", "Battery"}, {"/b", "Battery"}, {"/c", "Clock"}, {"/d", ""}}) {
        now = now + 10;
        host->filesChanged({file});
        ASSERT_EQ(asked.size(), *kind ? 1U : 0U) << file;
        if (asked.empty()) continue;
        ASSERT_EQ(asked[0].requests.size(), 1U);
        EXPECT_EQ(asked[0].requests[0].kind, kind);
        answer("new");
    }
    // At once, and what follows in one more request.
    now = now + 10;
    host->filesChanged({"/a"});
    answer("new");
    const Date quietUntil = now + FileNews::together;
    now = now + 0.1;
    host->filesChanged({"/b"});
    host->filesChanged({"/c"});
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(wakeAt, quietUntil);
    now = *wakeAt;
    host->wake();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].requests.size(), 2U);
}

TEST_F(Hosted, LiveWidgetsAreFreshWhileSeenAndNotOnBattery) {
    offers_ = offered();
    offers_[0].live = true;
    start();
    const auto battery = add("Battery", WidgetFamily::systemSmall);
    add("Clock", WidgetFamily::systemSmall);
    answer("80 %");
    answer("14:05");
    EXPECT_EQ(wakeAt, now + 300);
    refresh = 30;
    host->wake();
    EXPECT_EQ(wakeAt, now + 30);
    now = *wakeAt;
    host->wake();
    ASSERT_EQ(asked.size(), 1U);
    ASSERT_EQ(asked[0].requests.size(), 1U);
    EXPECT_EQ(asked[0].requests[0].kind, "Battery");
    answer("81 %");
    // Unplugged.
    refresh.reset();
    host->wake();
    EXPECT_EQ(wakeAt, now + 270);
    // Somebody turns to it, or the machine has slept.
    for (const auto& id : {std::optional(battery), std::optional<std::string>()}) {
        now = now + 9;
        host->freshen(id);
        EXPECT_TRUE(asked.empty());
        now = now + 2;
        host->freshen(id);
        ASSERT_EQ(asked.size(), 1U);
        answer("82 %");
    }
}

TEST_F(Hosted, WhatNobodySeesRestsUntilItIsSeen) {
    offers_ = offered();
    offers_[0].live = true;
    refresh = 30;
    start();
    const auto battery = add("Battery", WidgetFamily::systemSmall);
    answer("80 %");
    takeSeen();
    EXPECT_TRUE(host->isSeen());
    host->setSeen(battery, false);
    EXPECT_FALSE(host->isSeen());
    EXPECT_FALSE(isSeen_);
    EXPECT_EQ(wakeAt, std::nullopt);
    now = now + 900;
    host->filesChanged({"/a"});
    host->wake();
    EXPECT_TRUE(asked.empty());
    // In another size too.
    EXPECT_TRUE(host->setFamily(battery, WidgetFamily::systemMedium));
    EXPECT_TRUE(asked.empty());
    EXPECT_FALSE(isSeen_);
    takeSeen();
    host->setSeen(battery, true);
    EXPECT_TRUE(isSeen_);
    ASSERT_EQ(asked.size(), 1U);
    answer("50 %");
    EXPECT_EQ(takeSeen(), Seen{"Battery shows 50 %"});
}

}  // namespace
}  // namespace zelto::host
