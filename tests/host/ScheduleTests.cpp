#include <gtest/gtest.h>

#include "host/Schedule.hpp"
#include "ui/Building.hpp"

namespace zelto::host {

using namespace widgetkit;
namespace {

using Ids = std::vector<std::string>;

constexpr Date start{800'000'000};
constexpr double minute = 60, hour = 3600, day = 86'400;

ArchivedEntry entry(Date date, const std::string& text) {
    return {date, ui::Text(text)};
}

/// One entry, good for five minutes.
ArchivedTimeline fiveMinutes(Date now, const std::string& text) {
    return {{entry(now, text)}, now + 5 * minute};
}

std::string textOf(const Schedule& schedule, const std::string& id) {
    const ArchivedEntry* shown = schedule.shown(id);
    return shown ? std::get<ui::node::Text>(shown->view.node).text : "nothing";
}

TEST(Schedule, AsksAtOnceAndAgainAfterFiveMinutes) {
    Schedule schedule;
    schedule.add("a", std::nullopt);
    EXPECT_EQ(schedule.at(start).requests, Ids{"a"});
    EXPECT_EQ(schedule.nextInstant(), std::nullopt);
    EXPECT_EQ(textOf(schedule, "a"), "nothing");

    schedule.received("a", fiveMinutes(start + 1, "one"), start + 1);
    const auto due = schedule.at(start + 1);
    EXPECT_EQ(due.shows, Ids{"a"});
    EXPECT_EQ(due.requests, Ids{});
    EXPECT_EQ(textOf(schedule, "a"), "one");
    EXPECT_EQ(schedule.nextInstant(), start + 1 + 5 * minute);

    EXPECT_EQ(schedule.at(start + 5 * minute).requests, Ids{});
    EXPECT_EQ(schedule.at(start + 1 + 5 * minute).requests, Ids{"a"});
}

TEST(Schedule, ShowsWhatWasStoredAndAsksBehindIt) {
    Schedule schedule;
    schedule.add("a", fiveMinutes(start - hour, "old"));
    const auto due = schedule.at(start);
    EXPECT_EQ(due.shows, Ids{"a"});
    EXPECT_EQ(due.requests, Ids{"a"});
    EXPECT_EQ(textOf(schedule, "a"), "old");
}

TEST(Schedule, ShowsEachEntryAtItsDate) {
    Schedule schedule;
    schedule.add("clock", std::nullopt);
    schedule.at(start + 20);
    // Thirty entries: now, and then every minute's edge, as a clock has them.
    ArchivedTimeline timeline{{entry(start + 20, "20 s")}, start + 30 * minute};
    for (int i = 1; i < 30; ++i) timeline.entries.push_back(entry(start + i * minute, std::to_string(i)));
    schedule.received("clock", timeline, start + 20);
    EXPECT_EQ(schedule.at(start + 20).shows, Ids{"clock"});
    for (int i = 1; i < 30; ++i) {
        ASSERT_EQ(schedule.nextInstant(), start + i * minute);
        EXPECT_EQ(schedule.at(start + i * minute - 0.001).shows, Ids{});
        EXPECT_EQ(schedule.at(start + i * minute).shows, Ids{"clock"});
        EXPECT_EQ(textOf(schedule, "clock"), std::to_string(i));
    }
    EXPECT_EQ(schedule.nextInstant(), start + 30 * minute);
    EXPECT_EQ(schedule.at(start + 30 * minute).requests, Ids{"clock"});
}

TEST(Schedule, AnEntryThatLooksTheSameIsNotShownAgain) {
    Schedule schedule;
    schedule.add("a", std::nullopt);
    schedule.at(start);
    schedule.received("a", fiveMinutes(start, "same"), start);
    EXPECT_EQ(schedule.at(start).shows, Ids{"a"});
    schedule.at(start + 5 * minute);
    schedule.received("a", fiveMinutes(start + 5 * minute, "same"), start + 5 * minute);
    EXPECT_EQ(schedule.at(start + 5 * minute).shows, Ids{});
    EXPECT_EQ(schedule.shown("a")->date, start + 5 * minute);
}

TEST(Schedule, ReloadsThatFallDueTogetherGoOutTogether) {
    Schedule schedule;
    for (const char* id : {"a", "b", "c"}) schedule.add(id, std::nullopt);
    EXPECT_EQ(schedule.at(start).requests, (Ids{"a", "b", "c"}));
    schedule.received("a", fiveMinutes(start, "a"), start);
    schedule.received("b", fiveMinutes(start + 0.4, "b"), start + 0.4);
    schedule.received("c", fiveMinutes(start + 30, "c"), start + 30);
    schedule.at(start + 30);
    EXPECT_EQ(schedule.nextInstant(), start + 0.4 + 5 * minute);
    EXPECT_EQ(schedule.at(start + 5 * minute).requests, Ids{});
    EXPECT_EQ(schedule.at(start + 0.4 + 5 * minute).requests, (Ids{"a", "b"}));
    EXPECT_EQ(schedule.nextInstant(), start + 30 + 5 * minute);
}

TEST(Schedule, ARequestThatFailsForAnHourIsRepeatedAtGrowingPauses) {
    Schedule schedule;
    schedule.add("a", fiveMinutes(start, "kept"));
    std::vector<double> pauses;
    Date now = start;
    while (now < start + hour) {
        ASSERT_EQ(schedule.at(now).requests, Ids{"a"});
        schedule.failed("a", now);
        EXPECT_EQ(textOf(schedule, "a"), "kept");
        const Date next = schedule.nextInstant().value();
        EXPECT_EQ(schedule.at(next - 0.001).requests, Ids{});
        pauses.push_back(next - now);
        now = next;
    }
    const std::vector<double> growing{2, 4, 8, 16, 32, 64, 128, 256, 300, 300};
    ASSERT_GE(pauses.size(), growing.size());
    EXPECT_EQ(std::vector<double>(pauses.begin(), pauses.begin() + 10), growing);
    EXPECT_EQ(pauses.back(), 300);
    // Then it works again.
    schedule.at(now);
    schedule.received("a", fiveMinutes(now, "new"), now);
    schedule.at(now);
    EXPECT_EQ(textOf(schedule, "a"), "new");
    EXPECT_EQ(schedule.nextInstant(), now + 5 * minute);
}

TEST(Schedule, AClockSetBackADayAsksForEverythingAnew) {
    Schedule schedule;
    schedule.add("a", std::nullopt);
    schedule.at(start);
    schedule.received("a", fiveMinutes(start, "tomorrow"), start);
    schedule.at(start);
    const Date yesterday = start - day;
    const auto due = schedule.at(yesterday);
    EXPECT_EQ(due.requests, Ids{"a"});
    // Until the answer is there, what there is stays.
    EXPECT_EQ(textOf(schedule, "a"), "tomorrow");
    schedule.received("a", fiveMinutes(yesterday, "today"), yesterday);
    schedule.at(yesterday);
    EXPECT_EQ(textOf(schedule, "a"), "today");
    EXPECT_EQ(schedule.nextInstant(), yesterday + 5 * minute);
}

TEST(Schedule, AClockThatIsSteeredBackALittleChangesNothing) {
    Schedule schedule;
    schedule.add("a", std::nullopt);
    schedule.at(start);
    schedule.received("a", fiveMinutes(start, "a"), start);
    schedule.at(start);
    EXPECT_EQ(schedule.at(start - 0.5).requests, Ids{});
}

TEST(Schedule, AfterASuspendOfEightHoursTheLastEntryShowsAndANewTimelineIsWanted) {
    Schedule schedule;
    schedule.add("clock", std::nullopt);
    schedule.add("battery", std::nullopt);
    schedule.at(start);
    ArchivedTimeline minutes{{}, start + 30 * minute};
    for (int i = 0; i < 30; ++i) minutes.entries.push_back(entry(start + i * minute, std::to_string(i)));
    schedule.received("clock", minutes, start);
    schedule.received("battery", fiveMinutes(start, "80 %"), start);
    schedule.at(start);
    const auto due = schedule.at(start + 8 * hour);
    EXPECT_EQ(due.requests, (Ids{"battery", "clock"}));
    EXPECT_EQ(due.shows, Ids{"clock"});
    EXPECT_EQ(textOf(schedule, "clock"), "29");
}

TEST(Schedule, AReloadWhileOneIsUnderWayAsksOnceMore) {
    Schedule schedule;
    schedule.add("a", std::nullopt);
    schedule.at(start);
    // The zone changed: the answer on its way has the old one's texts.
    schedule.reloadAll();
    EXPECT_EQ(schedule.at(start).requests, Ids{});
    schedule.received("a", fiveMinutes(start, "old zone"), start);
    EXPECT_EQ(schedule.at(start).requests, Ids{"a"});
    schedule.received("a", fiveMinutes(start, "new zone"), start);
    EXPECT_EQ(schedule.at(start).requests, Ids{});
    EXPECT_EQ(textOf(schedule, "a"), "new zone");
}

TEST(Schedule, AReloadOvertakesPauses) {
    Schedule schedule;
    schedule.add("a", std::nullopt);
    schedule.at(start);
    schedule.failed("a", start);
    EXPECT_EQ(schedule.at(start + 1).requests, Ids{});
    schedule.reload("a");
    EXPECT_EQ(schedule.at(start + 1).requests, Ids{"a"});
}

TEST(Schedule, ATimelineThatWantsToBeReplacedAtOnceLivesAWhile) {
    Schedule schedule;
    schedule.add("a", std::nullopt);
    schedule.at(start);
    schedule.received("a", {{entry(start, "a")}, start - hour}, start);
    EXPECT_EQ(schedule.at(start).requests, Ids{});
    EXPECT_EQ(schedule.nextInstant(), start + Schedule::shortestLife);
}

TEST(Schedule, ForgetsWidgetsThatWereRemoved) {
    Schedule schedule;
    schedule.add("a", fiveMinutes(start, "a"));
    schedule.at(start);
    schedule.remove("a");
    schedule.received("a", fiveMinutes(start, "late"), start);
    EXPECT_EQ(schedule.shown("a"), nullptr);
    EXPECT_EQ(schedule.nextInstant(), std::nullopt);
}

TEST(Backoff, GrowsWithFailuresAndShrinksWithSuccesses) {
    runloop::Backoff backoff(1, 60);
    std::vector<double> pauses;
    const auto note = [&] { pauses.push_back(backoff.pause()); };
    note();
    for (int i = 0; i < 8; ++i) backoff.failed(), note();
    for (int i = 0; i < 7; ++i) backoff.succeeded(), note();
    EXPECT_EQ(pauses, (std::vector<double>{0, 1, 2, 4, 8, 16, 32, 60, 60, 30, 15, 7.5, 3.75, 1.875, 1, 0}));
}

TEST(Schedule, WhatIsNotSeenAsksForNothingAndShowsNothingNew) {
    Schedule schedule;
    schedule.add("a", std::nullopt);
    schedule.add("b", std::nullopt);
    EXPECT_TRUE(schedule.isAnySeen());
    schedule.setSeen("b", false);
    EXPECT_EQ(schedule.at(start).requests, Ids{"a"});
    schedule.setSeen("a", false);
    EXPECT_FALSE(schedule.isAnySeen());
    schedule.received("a", fiveMinutes(start, "one"), start);
    EXPECT_EQ(schedule.at(start + hour).shows, Ids{});
    EXPECT_EQ(schedule.nextInstant(), std::nullopt);
    EXPECT_EQ(textOf(schedule, "a"), "nothing");
    // Brought up to date at once.
    schedule.setSeen("a", true);
    EXPECT_EQ(schedule.nextInstant(), start + 5 * minute);
    const auto due = schedule.at(start + hour);
    EXPECT_EQ(due.shows, Ids{"a"});
    EXPECT_EQ(due.requests, Ids{"a"});
}

TEST(Schedule, LiveWidgetsAreAskedAgainWhileTheyAreSeen) {
    Schedule schedule;
    for (const char* id : {"live", "other", "unseen"}) schedule.add(id, std::nullopt);
    schedule.setLive("live", true);
    schedule.setLive("unseen", true);
    EXPECT_TRUE(schedule.isAnyLiveSeen());
    schedule.at(start);
    for (const char* id : {"live", "other", "unseen"})
        schedule.received(id, fiveMinutes(start, "one"), start);
    schedule.setSeen("unseen", false);
    EXPECT_EQ(schedule.nextInstant(), start + 5 * minute);
    schedule.refreshEvery(30);
    EXPECT_EQ(schedule.nextInstant(), start + 30);
    EXPECT_EQ(schedule.at(start + 29).requests, Ids{});
    EXPECT_EQ(schedule.at(start + 30).requests, Ids{"live"});
    EXPECT_EQ(schedule.nextInstant(), start + 5 * minute);
    schedule.received("live", fiveMinutes(start + 30, "two"), start + 30.5);
    EXPECT_EQ(schedule.nextInstant(), start + 60.5);
    // On the battery the timelines say when.
    schedule.refreshEvery(std::nullopt);
    EXPECT_EQ(schedule.at(start + 4 * minute).requests, Ids{});
    schedule.setSeen("live", false);
    EXPECT_FALSE(schedule.isAnyLiveSeen());
}

TEST(Schedule, ALiveWidgetThatFailsKeepsItsPauses) {
    Schedule schedule;
    schedule.add("live", std::nullopt);
    schedule.setLive("live", true);
    schedule.refreshEvery(1);
    schedule.at(start);
    schedule.failed("live", start);
    EXPECT_EQ(schedule.nextInstant(), start + Schedule::firstPause);
}

TEST(Schedule, OneThatSomebodyTurnsToIsFresh) {
    Schedule schedule;
    for (const char* id : {"live", "other"}) schedule.add(id, std::nullopt);
    schedule.setLive("live", true);
    schedule.at(start);
    for (const char* id : {"live", "other"}) schedule.received(id, fiveMinutes(start, "one"), start);
    for (const auto& [seconds, requests] : {std::pair<double, Ids>{10, {}}, {11, {"live"}}, {12, {}}}) {
        for (const char* id : {"live", "other", "unknown"}) schedule.freshen(id, start + seconds);
        EXPECT_EQ(schedule.at(start + seconds).requests, requests) << seconds;
    }
}

}  // namespace
}  // namespace zelto::host
