#include <gtest/gtest.h>

#include "tests/support/Golden.hpp"
#include "tests/support/Looks.hpp"
#include "widget/Widgets/OverviewWidget.hpp"
#include "widget/Widgets/WidgetKinds.hpp"

namespace zelto::test {

using namespace shared;
using namespace widget;
using namespace widgetkit;
namespace {

Look with(std::optional<std::int64_t> battery, bool charging, double cpu = 0.37) {
    return {
        .live = {
            .battery = battery,
            .charging = charging,
            .cpu = cpu,
            .memory = 0.678,
            .disk = 0.886,
            .diskFree = 112'400'000'000,
            .diskTotal = 994'662'584'320}};
}
std::string outline(WidgetFamily family, const Look& look) {
    return outlineOf(WidgetKinds::overview, family, look);
}

/// The arc's colour and the texts of the small family's ring.
std::string ring(const Look& look) {
    const std::string text = outline(small, look);
    const auto arc = text.find("style=", text.find("trim=")) + 6;
    std::string out = text.substr(arc, 7);
    for (auto at = text.find("Text \"", arc); at < text.find("HStack", arc);
         at = text.find("Text \"", at + 1))
        out += " " + text.substr(at + 6, text.find('"', at + 6) - at - 6);
    return out;
}

TEST(OverviewWidget, LooksAsItShould) {
    EXPECT_TRUE(matchesGolden("ZeltoWidget-systemSmall-charging", outline(small, with(73, true))));
    EXPECT_TRUE(matchesGolden("ZeltoWidget-systemSmall-noBattery", outline(small, with({}, false))));
    EXPECT_TRUE(matchesGolden("ZeltoWidget-systemMedium-charging", outline(medium, with(73, true))));
    EXPECT_TRUE(matchesGolden("ZeltoWidget-systemMedium-noBattery", outline(medium, with({}, false))));
}

TEST(OverviewWidget, SmallRingTurnsToDangerAtTwentyPercentUnlessCharging) {
    EXPECT_EQ(ring(with(20, false)), "#FF6166 20% bateria");
    EXPECT_EQ(ring(with(21, false)), "#40D9B2 21% bateria");
    EXPECT_EQ(ring(with(5, true)), "#40D9B2 5% carregando");
}

TEST(OverviewWidget, SmallRingShowsTheLoadWithoutABattery) {
    EXPECT_EQ(ring(with({}, false, 0.59)), "#40D9B2 59% CPU");
    EXPECT_EQ(ring(with({}, false, 0.6)), "#FFA640 60% CPU");
    EXPECT_EQ(ring(with({}, false, 0.85)), "#FF6166 85% CPU");
}

TEST(OverviewWidget, OnlyTheBatteryRingIsPadded) {
    EXPECT_NE(
        outline(small, with(50, false)).find(".padding(top=0 leading=10 bottom=0 trailing=10)"),
        std::string::npos);
    EXPECT_EQ(outline(small, with({}, false)).find("leading=10"), std::string::npos);
}

TEST(OverviewWidget, MediumHasThreeRingsWithoutABatteryAndNoLowBatteryColour) {
    const auto rings = [](const std::string& text) {
        int count = 0;
        for (auto at = text.find("ZStack"); at != std::string::npos; at = text.find("ZStack", at + 1))
            ++count;
        return count;
    };
    EXPECT_EQ(rings(outline(medium, with({}, false))), 3);
    EXPECT_EQ(rings(outline(medium, with(10, false))), 4);
    const std::string low = outline(medium, with(10, false));
    EXPECT_NE(low.find("trim=0.1 paint=stroke(style=#40D9B2"), std::string::npos);
}

TEST(OverviewWidget, LabelsCutWhatRingsRound) {
    const std::string text = outline(small, with({}, false, 0.999));
    EXPECT_NE(text.find("Text \"99%\""), std::string::npos);
    EXPECT_NE(text.find("Text \"100%\""), std::string::npos);
}

TEST(OverviewWidget, IgnoresTheSnapshotAndFollowsTheEntrysDate) {
    Look look = with(73, true);
    const std::string without = outline(medium, look);
    look.snapshot = WidgetSnapshot::sample(wednesday);
    EXPECT_EQ(outline(medium, look), without);
    look.date = wednesday + 3600;
    EXPECT_NE(outline(medium, look).find("Text \"15:05\""), std::string::npos);
    look.now = wednesday + 7200;
    EXPECT_NE(outline(medium, look).find("Text \"15:05\""), std::string::npos);
}

}  // namespace
}  // namespace zelto::test
