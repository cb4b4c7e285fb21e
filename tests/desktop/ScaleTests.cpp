// Other scales, and monitors that come and go.

#include <algorithm>

#include <gtest/gtest.h>

#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"

namespace zelto::test {

using namespace widgetkit;
namespace {

using enum WidgetFamily;

std::vector<host::PlacedWidget> some() {
    return {widget("ZeltoWorldClock", systemMedium, 0, 0), widget("ZeltoFans", systemSmall, 1, 1)};
}

bool seen(RunningDesktop& desktop, double zoom, double pixelsPerUnit, double tolerance) {
    return eventually([&] {
        return std::ranges::all_of(
            some(), [&](const auto& each) { return desktop.isSeen(each, zoom, pixelsPerUnit, tolerance); });
    });
}

void moveAway(Display& display) {
    display.move(Display::width - 2, Display::height - 2);
}

TEST(Scales, AFractionalScaleOnX11IsSharp) {
    const auto display = startX11();
    moveAway(*display);
    RunningDesktop desktop(*display);
    desktop.place(some());
    desktop.start({"--scale", "1.5"});
    EXPECT_TRUE(seen(desktop, 1.5, 1, 0)) << desktop.log();
}

TEST(Scales, AWholeScaleOnWaylandIsSharp) {
    const auto display = startWayland("2");
    moveAway(*display);
    RunningDesktop desktop(*display);
    desktop.place(some());
    desktop.start();
    EXPECT_TRUE(seen(desktop, 1, 2, 0)) << desktop.log();
}

TEST(Scales, AFractionalScaleOnWaylandHasTheRightSize) {
    const auto display = startWayland("1.5");
    moveAway(*display);
    RunningDesktop desktop(*display);
    desktop.place(some());
    desktop.start();
    // Drawn twice as large, and made smaller by the compositor.
    EXPECT_TRUE(seen(desktop, 1, 1.5, 6)) << desktop.log();
}

TEST(Monitors, AWidgetComesBackWhenItsMonitorIsUnplugged) {
    const auto display = startMonitors();
    RunningDesktop desktop(*display);
    display->plugIn();
    const int half = Display::width / 2;
    auto fans = widget("ZeltoFans", systemSmall, 1, 1);
    fans.monitor = display->second();
    desktop.place({fans});
    desktop.start();
    const auto isOn = [&](int left) {
        return eventually([&] { return desktop.isSeen(fans, 1, 1, 0, left); });
    };
    EXPECT_TRUE(isOn(half)) << desktop.log();
    display->unplug();
    EXPECT_TRUE(isOn(0)) << desktop.log();
    // Where it belongs was not forgotten.
    EXPECT_EQ(desktop.widgets(), std::vector{fans});
    // A new monitor may have another name; a widget can be sent there.
    display->plugIn();
    ASSERT_TRUE(eventually([&] {
        return desktop.call("move", {fans.id, display->second(), 0, 1}).has_value();
    }));
    fans.column = 0;
    EXPECT_TRUE(isOn(half)) << desktop.log();
}

}  // namespace
}  // namespace zelto::test
