// What hosts are told of a widget's sources is what it shows.

#include <gtest/gtest.h>

#include "tests/support/Samples.hpp"
#include "widget/Widgets/WidgetContents.hpp"

namespace zelto::test {
namespace {

TEST(WidgetContents, AreToldOfEveryWidgetInOrder) {
    std::vector<std::string> offered, told;
    for (const auto& widget : widget::ZeltoWidgetBundle{{}}.body()) offered.push_back(widget.info().kind);
    for (const auto& each : widget::shownSources) told.emplace_back(each.kind);
    EXPECT_EQ(offered, told);
}

TEST(WidgetContents, AreWhatTheWidgetsShow) {
    Look before = sample([](shared::WidgetSnapshot& s) {
        s.disk = shared::WidgetSnapshot::Disk{.name = "Sistema", .total = 1000, .available = 10};
    });
    Look otherReadings = before;
    otherReadings.live = {
        .battery = 3,
        .charging = false,
        .cpu = 0.03,
        .memory = 0.04,
        .disk = 0.05,
        .diskFree = 6,
        .diskTotal = 7};
    Look otherSnapshot = before;
    otherSnapshot.snapshot.reset();
    for (const auto& widget : widget::ZeltoWidgetBundle{{}}.body()) {
        const std::string& kind = widget.info().kind;
        const auto* told = std::ranges::find(
            widget::shownSources, kind, [](const auto& each) { return std::string(each.kind); });
        ASSERT_NE(told, widget::shownSources.end()) << kind;
        bool showsReadings = false, showsSnapshot = false;
        for (const auto family : widget.info().families) {
            const std::string outline = outlineOf(kind, family, before);
            showsReadings = showsReadings || outlineOf(kind, family, otherReadings) != outline;
            showsSnapshot = showsSnapshot || outlineOf(kind, family, otherSnapshot) != outline;
        }
        EXPECT_EQ(told->readings, showsReadings) << kind;
        EXPECT_EQ(told->snapshot, showsSnapshot) << kind;
    }
}

TEST(WidgetContents, NameTheSnapshotsFile) {
    const auto contents = widget::contentsOf("/home/user/widget.json");
    ASSERT_TRUE(contents.contains("ZeltoFans"));
    EXPECT_EQ(contents.at("ZeltoFans").files, std::vector<std::string>{"/home/user/widget.json"});
    EXPECT_FALSE(contents.at("ZeltoFans").live);
    EXPECT_TRUE(contents.at("ZeltoBattery").live);
}

}  // namespace
}  // namespace zelto::test
