// The widgets in KWin, on Wayland.

#include <gtest/gtest.h>

#include "tests/desktop/KWin.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"

namespace zelto::test {
namespace {

TEST(OnKWin, WidgetsLieInTheirPlacesAndADragMovesThem) {
    KWin kwin;
    RunningDesktop desktop(kwin);
    desktop.place(eleven());
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    const auto fans = eleven()[4];
    const auto [x, y] = RunningDesktop::onDisplay(fans, {20, 82});
    kwin.move(x, y);
    kwin.press(Display::Button::primary);
    for (int i = 1; i <= 4; ++i) kwin.move(x, y + 135 * i);
    kwin.release(Display::Button::primary);
    EXPECT_TRUE(eventually([&] { return desktop.widgets()[4].row == 3 && desktop.allSeen(); }));
    EXPECT_TRUE(desktop.stop());
    EXPECT_EQ(desktop.log(), "");
}

}  // namespace
}  // namespace zelto::test
