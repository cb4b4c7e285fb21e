// Widgets rest while the windows of other programs hide them, in the real display.

#include <gtest/gtest.h>

#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Process.hpp"

namespace zelto::test {
namespace {

struct Covers : testing::TestWithParam<bool> {
    std::unique_ptr<Display> display = startX11();
    std::optional<Child> compositor;
    RunningDesktop desktop{*display};

    Covers() {
        if (!GetParam()) return;
        auto variables = display->environment();
        variables.push_back("HOME=" + desktop.folder().string());
        compositor.emplace(
            std::vector<std::string>{"picom", "--backend", "xrender", "--config", "/dev/null"},
            variables,
            desktop.folder() / "compositor.log");
    }
    Child cover(const std::string& how = "") {
        std::vector<std::string> words{programFolder() / "covering-window"};
        if (!how.empty()) words.push_back(how);
        Child window(words, desktop.environment(), desktop.folder() / "window.log");
        EXPECT_EQ(window.line(), "shown");
        return window;
    }
    bool becomes(bool isSeen) {
        return eventually([&] { return desktop.tellsSeen(isSeen); });
    }
    void tool(std::vector<std::string> words) const {
        words.insert(words.begin(), "xdotool");
        const auto result = run(words, "", display->environment());
        EXPECT_EQ(result.status, 0) << result.errors;
    }
};

TEST_P(Covers, RestAWidgetUntilItIsSeenAgain) {
    desktop.place({widget("ZeltoBattery", widgetkit::WidgetFamily::systemSmall, 0, 0)});
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    EXPECT_TRUE(becomes(true));
    {
        const Child window = cover();
        EXPECT_TRUE(becomes(false)) << desktop.log();
        // On another workspace.
        tool({"set_num_desktops", "2"});
        tool({"search", "--name", "^covering$", "set_desktop_for_window", "1"});
        EXPECT_TRUE(becomes(true));
        tool({"search", "--name", "^covering$", "set_desktop_for_window", "0"});
        EXPECT_TRUE(becomes(false));
        tool({"search", "--name", "^covering$", "windowminimize"});
        EXPECT_TRUE(becomes(true));
        tool({"search", "--name", "^covering$", "windowactivate"});
        EXPECT_TRUE(becomes(false));
    }
    EXPECT_TRUE(becomes(true));
    EXPECT_TRUE(eventually([&] { return desktop.allSeen(); }));
    EXPECT_TRUE(desktop.stop());
    EXPECT_EQ(desktop.log(), "");
}

TEST_P(Covers, AFrameHidesWithItsWindow) {
    desktop.place({widget("ZeltoBattery", widgetkit::WidgetFamily::systemSmall, 0, 0)});
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    {
        // Its title bar is where the widget begins.
        const Child window = cover("maximized");
        EXPECT_TRUE(becomes(false)) << desktop.log();
    }
    EXPECT_TRUE(becomes(true));
    EXPECT_TRUE(desktop.stop());
}

/// Nothing shines through without a compositor.
struct TranslucentCovers : Covers {};

TEST_P(TranslucentCovers, HideNothing) {
    desktop.place({widget("ZeltoBattery", widgetkit::WidgetFamily::systemSmall, 0, 0)});
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    const Child glass = cover("translucent");
    {
        const Child window = cover();
        EXPECT_TRUE(becomes(false));
    }
    EXPECT_TRUE(becomes(true));
    EXPECT_TRUE(desktop.stop());
}

TEST(TilingCovers, LieOverTheWidgetsHoweverTheyAreStacked) {
    const auto display = startX11(Manager::i3);
    RunningDesktop desktop(*display);
    desktop.place({widget("ZeltoBattery", widgetkit::WidgetFamily::systemSmall, 0, 0)});
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    const auto becomes = [&](bool isSeen) { return eventually([&] { return desktop.tellsSeen(isSeen); }); };
    const std::vector<std::string> program{programFolder() / "covering-window", "plain"};
    {
        Child window(program, desktop.environment(), desktop.folder() / "window.log");
        ASSERT_EQ(window.line(), "shown");
        EXPECT_TRUE(becomes(false)) << desktop.log();
        EXPECT_FALSE(desktop.allSeen());
        Child second(program, desktop.environment(), desktop.folder() / "window.log");
        ASSERT_EQ(second.line(), "shown");
        for (const char* command :
             {"layout stacking", "focus left", "layout tabbed", "floating toggle", "layout splith"})
            EXPECT_EQ(run({"/usr/bin/i3-msg", command}, "", desktop.environment()).status, 0) << command;
        EXPECT_TRUE(becomes(false));
        EXPECT_FALSE(desktop.allSeen());
        EXPECT_EQ(run({"/usr/bin/i3-msg", "workspace 2"}, "", desktop.environment()).status, 0);
        EXPECT_TRUE(becomes(true));
        EXPECT_TRUE(eventually([&] { return desktop.allSeen(); }));
        EXPECT_EQ(run({"/usr/bin/i3-msg", "workspace 1"}, "", desktop.environment()).status, 0);
        EXPECT_TRUE(becomes(false));
    }
    EXPECT_TRUE(becomes(true));
    EXPECT_TRUE(eventually([&] { return desktop.allSeen(); }));
    EXPECT_TRUE(desktop.stop());
    EXPECT_EQ(desktop.log(), "");
}

/// What the compositor wants no frames of is not seen. It is asked before each request.
struct WaylandCovers : testing::Test {
    void show(Display& display) {
        desktop.emplace(display);
        desktop->place({widget("ZeltoBattery", widgetkit::WidgetFamily::systemSmall, 0, 0)});
        desktop->start({"--refresh", "1"});
        ASSERT_TRUE(eventually([&] { return desktop->allSeen(); })) << desktop->log();
        ASSERT_TRUE(becomes(true));
    }
    bool becomes(bool isSeen) {
        return eventually([&] { return desktop->tellsSeen(isSeen); });
    }
    void end() {
        EXPECT_TRUE(eventually([&] { return desktop->allSeen(); }));
        EXPECT_TRUE(desktop->stop());
        EXPECT_EQ(desktop->log(), "");
    }

    std::optional<RunningDesktop> desktop;
};

TEST_F(WaylandCovers, AFullscreenWindowRestsIt) {
    const auto display = startWayland();
    show(*display);
    {
        Child window(
            {programFolder() / "covering-window"}, desktop->environment(), desktop->folder() / "window.log");
        ASSERT_EQ(window.line(), "shown");
        EXPECT_TRUE(becomes(false)) << desktop->log();
        display->command({"fullscreen", "disable"});
        EXPECT_TRUE(becomes(true));
        display->command({"fullscreen", "enable"});
        EXPECT_TRUE(becomes(false));
    }
    EXPECT_TRUE(becomes(true));
    end();
}

TEST_F(WaylandCovers, AWidgetThatTookTheKeysLiesBelowOthersAgain) {
    const auto display = startWayland();
    show(*display);
    // The second time it has them already.
    for (int i = 0; i < 2; ++i) EXPECT_EQ(desktop->zelto({"desktop", "--focus"}).status, 0);
    {
        Child window(
            {programFolder() / "covering-window", "plain"},
            desktop->environment(),
            desktop->folder() / "window.log");
        ASSERT_EQ(window.line(), "shown");
        EXPECT_TRUE(eventually([&] {
            const auto shot = display->screenshot();
            return shot.at(40, 20) == shot.at(700, 450);
        }));
    }
    // Without the ring around what has the keys.
    desktop->stop();
    desktop->start({"--refresh", "1"});
    EXPECT_TRUE(becomes(true));
    end();
}

TEST_F(WaylandCovers, MonitorsThatAreOffRestIt) {
    const auto display = startMonitors();
    show(*display);
    display->turn(false);
    EXPECT_TRUE(becomes(false)) << desktop->log();
    display->turn(true);
    EXPECT_TRUE(becomes(true));
    end();
}

TEST_F(WaylandCovers, NoMonitorRestsIt) {
    const auto display = startMonitors();
    show(*display);
    display->unplug();
    EXPECT_TRUE(becomes(false)) << desktop->log();
    display->plugIn();
    EXPECT_TRUE(becomes(true));
    end();
}

INSTANTIATE_TEST_SUITE_P(X11, TranslucentCovers, testing::Values(true));
INSTANTIATE_TEST_SUITE_P(X11, Covers, testing::Bool(), [](const auto& tested) {
    return tested.param ? "WithACompositor" : "WithoutACompositor";
});

}  // namespace
}  // namespace zelto::test
