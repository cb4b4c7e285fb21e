// What an app may legally write, however odd, on a real desktop.

#include <gtest/gtest.h>

#include "shared/WidgetSnapshot.hpp"
#include "tests/desktop/RunningDesktop.hpp"
#include "ui/Reading.hpp"

namespace zelto::test {

using namespace shared;
namespace {

using host::PlacedWidget;

/// A snapshot that is far beyond what anybody looks at, and a fan whose speed no integer holds.
WidgetSnapshot enormous() {
    WidgetSnapshot s = WidgetSnapshot::sample();
    s.clips[0].text = std::string(12'000'000, 'x');
    s.events[0].title = std::string(1'000'000, 'y');
    s.cpuHistory.assign(100'000, 0.5);
    s.careItems.assign(5000, {.title = "Memória", .level = "attention", .summary = {}});
    s.awakeEnd = Date{1e300};
    s.fans[0].actual = 1e300;
    return s;
}

struct RealLife : testing::Test {
    std::unique_ptr<Display> display = startX11();
    RunningDesktop desktop{*display};

    /// Starts it for the first time, which places all widgets by itself.
    void start(const WidgetSnapshot& snapshot) {
        snapshot.save(HomeLookup::fixed(desktop.folder()));
        desktop.start();
        ASSERT_TRUE(eventually([&] { return desktop.widgets().size() == 11; })) << desktop.log();
    }
    PlacedWidget placed(const std::string& kind) {
        for (const PlacedWidget& each : desktop.widgets())
            if (each.kind == kind) return each;
        return {};
    }
    bool isShown(const PlacedWidget& each) { return desktop.entry(each) && desktop.isSeen(each); }
    bool othersAreShown() {
        for (const PlacedWidget& each : desktop.widgets())
            if (each.kind != "ZeltoFans" && !isShown(each)) return false;
        return true;
    }
    std::vector<std::string> read(const std::string& kind) {
        return ui::readingTexts(desktop.entry(placed(kind)).value().view, Date::now());
    }
};

TEST_F(RealLife, AnEnormousSnapshotLeavesTenWidgetsRight) {
    start(enormous());
    ASSERT_TRUE(eventually([this] { return othersAreShown(); })) << desktop.log();
    EXPECT_FALSE(desktop.entry(placed("ZeltoFans")));
    // A row is named by the beginning of what it shows.
    EXPECT_EQ(read("ZeltoClipboard").at(2), std::string(256, 'x'));
    EXPECT_EQ(read("ZeltoCalendar").at(2), std::string(1024, 'y'));
    EXPECT_EQ(read("ZeltoCare").back(), "5000 pontos de atenção");
    EXPECT_EQ(read("ZeltoAwake").at(1), "Acordado");
    EXPECT_EQ(read("ZeltoEqualizer").at(1), "Ligado");
    EXPECT_EQ(read("ZeltoWorldClock").at(2), "Sao Paulo");
    // One cause, told once, when the fans have had their second chance.
    ASSERT_TRUE(eventually([this] { return !desktop.log().empty(); }));
    EXPECT_EQ(
        desktop.log(), "warning: ZeltoFans, systemSmall: the widget extension died (signal 6, Aborted)\n");

    // A snapshot that the fans can show brings them back.
    WidgetSnapshot::sample().save(HomeLookup::fixed(desktop.folder()));
    EXPECT_EQ(desktop.zelto({"reload"}).status, 0);
    EXPECT_TRUE(eventually([this] { return isShown(placed("ZeltoFans")); })) << desktop.log();
}

}  // namespace
}  // namespace zelto::test
