#include <gtest/gtest.h>

#include "foundation/ISO8601.hpp"
#include "tests/support/LiveFields.hpp"
#include "widget/Common/ZeltoProvider.hpp"

namespace zelto::test {

using namespace shared;
using namespace widget;
using namespace widgetkit;
namespace {

static_assert(TimelineProvider<ZeltoProvider>);

/// Sources that count how often they are asked; the clock runs on by half a second with each reading.
struct Sources {
    Date now = *parseISO8601("2026-03-11T14:07:42-03:00");
    bool hasSnapshot = true;
    std::string asked = {};

    ZeltoProvider provider(bool minuteByMinute = false) {
        return {
            .minuteByMinute = minuteByMinute,
            .sources = {
                .now =
                    [this] {
                        asked += "now ";
                        return now;
                    },
                .live =
                    [this] {
                        asked += "live ";
                        now = now + 0.5;
                        return LiveData{.battery = 12, .cpu = 0.5};
                    },
                .snapshot = [this]() -> std::optional<WidgetSnapshot> {
                    asked += "snapshot ";
                    if (!hasSnapshot) return std::nullopt;
                    WidgetSnapshot snapshot;
                    snapshot.eqPreset = "mine";
                    return snapshot;
                }}};
    }
};

constexpr TimelineProviderContext context{WidgetFamily::systemSmall, false};
constexpr TimelineProviderContext gallery{WidgetFamily::systemSmall, true};

template <class T, class Call>
T once(Call call) {
    std::optional<T> result;
    int calls = 0;
    call([&](T value) {
        result = std::move(value);
        ++calls;
    });
    EXPECT_EQ(calls, 1);
    return *std::move(result);
}
ZeltoEntry snapshotOf(const ZeltoProvider& provider, const TimelineProviderContext& where) {
    return once<ZeltoEntry>([&](const auto& completion) { provider.getSnapshot(where, completion); });
}
Timeline<ZeltoEntry> timelineOf(const ZeltoProvider& provider) {
    return once<Timeline<ZeltoEntry>>(
        [&](const auto& completion) { provider.getTimeline(context, completion); });
}

TEST(Placeholder, HasEveryReading) {
    EXPECT_EQ(untouched(placeholderLiveData()), "");
}

TEST(Placeholder, TouchesNeitherTheFileNorTheReader) {
    Sources sources;
    const ZeltoEntry entry = sources.provider().placeholder(context);
    EXPECT_EQ(sources.asked, "now ");
    EXPECT_EQ(entry.date, sources.now);
    EXPECT_EQ(entry.live.battery, 80);
    EXPECT_TRUE(entry.live.charging);
    EXPECT_EQ(entry.live.cpu, 0.22);
    EXPECT_EQ(entry.live.memory, 0.55);
    EXPECT_EQ(entry.live.disk, 0.86);
    EXPECT_EQ(entry.live.diskFree, 33'000'000'000U);
    EXPECT_EQ(entry.live.diskTotal, 245'000'000'000U);
    EXPECT_EQ(entry.snapshot->eqPreset, "Graves+");
}

TEST(Snapshot, IsTheSampleInTheGalleryEvenWhenAFileExists) {
    Sources sources;
    const ZeltoEntry entry = snapshotOf(sources.provider(), gallery);
    EXPECT_EQ(entry.snapshot->eqPreset, "Graves+");
    EXPECT_EQ(entry.live.battery, 80);
    EXPECT_EQ(sources.asked, "now ");
}

TEST(Snapshot, ReadsDateThenMachineThenFileElsewhere) {
    Sources sources;
    const Date start = sources.now;
    const ZeltoEntry entry = snapshotOf(sources.provider(), context);
    EXPECT_EQ(sources.asked, "now live snapshot ");
    EXPECT_EQ(entry.date, start);
    EXPECT_EQ(entry.live.battery, 12);
    EXPECT_EQ(entry.snapshot->eqPreset, "mine");
}

TEST(Timeline, HoldsOneEntryRefreshedFiveMinutesAfterTheReading) {
    Sources sources;
    const Date start = sources.now;
    const auto timeline = timelineOf(sources.provider());
    ASSERT_EQ(timeline.entries.size(), 1U);
    EXPECT_EQ(timeline.entries[0].date, start);
    EXPECT_EQ(timeline.policy.instant, start + 300.5);
    EXPECT_EQ(sources.asked, "now live snapshot now ");
}

TEST(Timeline, HasRealReadingsWithoutASnapshotFile) {
    Sources sources{.hasSnapshot = false};
    const auto timeline = timelineOf(sources.provider());
    EXPECT_FALSE(timeline.entries[0].snapshot);
    EXPECT_EQ(timeline.entries[0].live.cpu, 0.5);
}

TEST(MinuteByMinute, HasThirtyEntriesFromTheStartOfTheMinute) {
    Sources sources;
    const auto timeline = timelineOf(sources.provider(true));
    const Date start = *parseISO8601("2026-03-11T14:07:00-03:00");
    ASSERT_EQ(timeline.entries.size(), 30U);
    for (int i = 0; i < 30; ++i) {
        EXPECT_EQ(timeline.entries[static_cast<std::size_t>(i)].date, start + 60 * i);
        EXPECT_EQ(timeline.entries[static_cast<std::size_t>(i)].snapshot, timeline.entries[0].snapshot);
    }
    EXPECT_EQ(timeline.policy.instant, start + 1800);
    EXPECT_EQ(sources.asked, "now live snapshot ");
}

TEST(MinuteByMinute, BeginsAtTheVeryInstantOnAMinutesBoundaryAndUpTo59SecondsBefore) {
    Sources sources;
    sources.now = *parseISO8601("2026-03-11T14:07:00Z");
    EXPECT_EQ(timelineOf(sources.provider(true)).entries[0].date, *parseISO8601("2026-03-11T14:07:00Z"));
    sources.now = *parseISO8601("2026-03-11T14:07:59.9Z");
    EXPECT_EQ(timelineOf(sources.provider(true)).entries[0].date, *parseISO8601("2026-03-11T14:07:00Z"));
}

TEST(Freshness, EndsAtNineHundredSeconds) {
    WidgetSnapshot snapshot;
    snapshot.date = {1000};
    const auto entry = [&](double date) {
        return ZeltoEntry{{date}, {}, std::make_shared<const WidgetSnapshot>(snapshot)};
    };
    EXPECT_TRUE(entry(1899).freshSnapshot());
    EXPECT_FALSE(entry(1900).freshSnapshot());
    EXPECT_TRUE(entry(500).freshSnapshot());
    EXPECT_FALSE((ZeltoEntry{{0}, {}, nullptr}.freshSnapshot()));
}

}  // namespace
}  // namespace zelto::test
