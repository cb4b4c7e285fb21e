// The widgets in GNOME Shell itself, which has no layers for them.

#include <gtest/gtest.h>

#include "tests/desktop/GnomeShell.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"
#include "tests/support/Paths.hpp"

namespace zelto::test {
namespace {

TEST(Gnome, WidgetsLieInTheirPlacesBelowAllWindows) {
    GnomeShell shell;
    RunningDesktop desktop(shell);
    desktop.place(eleven());
    desktop.start();
    EXPECT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    // 1 is a desktop's window, 0 the lowest layer.
    const std::string ours =
        "global.get_window_actors().map(a => a.meta_window).filter(w => w.get_pid() == " +
        std::to_string(desktop.process().pid()) + ")";
    EXPECT_EQ(shell.evaluate(ours + ".length"), "11");
    EXPECT_EQ(
        shell.evaluate(
            ours + ".every(w => w.get_window_type() == 1 && w.get_layer() == 0 && w.skip_taskbar)"),
        "true");
    // A drag, to where nothing stands.
    const auto fans = eleven()[4];
    const auto [x, y] = RunningDesktop::onDisplay(fans, {20, 82});
    shell.move(x, y + shell.panel());
    shell.press(Display::Button::primary);
    shell.move(x, y + shell.panel() + 100);
    shell.move(x, y + shell.panel() + 3 * 180);
    shell.release(Display::Button::primary);
    EXPECT_TRUE(eventually([&] { return desktop.widgets()[4].row == 3 && desktop.allSeen(); }));
    EXPECT_TRUE(desktop.stop());
    EXPECT_EQ(desktop.log(), "");
}

TEST(Gnome, WithoutItsXServerWidgetsAreWindowsAndTheLogSaysSo) {
    GnomeShell shell;
    RunningDesktop desktop(shell);
    desktop.place({widget("ZeltoBattery", widgetkit::WidgetFamily::systemSmall, 0, 0)});
    desktop.start({}, {"DISPLAY="});
    EXPECT_NE(desktop.log().find("offers no layer below other windows, and no X server"), std::string::npos);
    EXPECT_TRUE(desktop.stop());
}

TEST(Gnome, ACoveredWidgetRestsUntilItIsSeenAgain) {
    GnomeShell shell;
    RunningDesktop desktop(shell);
    const auto becomes = [&](bool isSeen) { return eventually([&] { return desktop.tellsSeen(isSeen); }); };
    desktop.place({widget("ZeltoBattery", widgetkit::WidgetFamily::systemSmall, 0, 0)});
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    EXPECT_TRUE(becomes(true));
    {
        auto variables = desktop.environment();
        variables.emplace_back("GDK_BACKEND=x11");
        Child window(
            {programFolder() / "covering-window", "maximized"}, variables, desktop.folder() / "window.log");
        ASSERT_EQ(window.line(), "shown");
        EXPECT_TRUE(becomes(false)) << desktop.log();
        const auto toWorkspace = [&](const std::string& index) {
            shell.evaluate("global.workspace_manager.get_workspace_by_index(" + index + ").activate(0); 1");
        };
        toWorkspace("1");
        EXPECT_TRUE(becomes(true));
        toWorkspace("0");
        EXPECT_TRUE(becomes(false));
        // The overview shows other windows small, and the widgets not at all.
        shell.showOverview(true);
        shell.showOverview(false);
        EXPECT_TRUE(desktop.tellsSeen(false));
    }
    EXPECT_TRUE(becomes(true));
    EXPECT_TRUE(eventually([&] { return desktop.allSeen(); }));
    EXPECT_TRUE(desktop.stop());
    EXPECT_EQ(desktop.log(), "");
}

}  // namespace
}  // namespace zelto::test
