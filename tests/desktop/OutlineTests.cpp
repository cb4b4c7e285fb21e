// The widgets' outline on a display on which nothing can be translucent, and fonts that are not there.

#include <fstream>

#include <gtest/gtest.h>

#include "layout/Layout.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"

namespace zelto::test {

using namespace widgetkit;
namespace {

/// What a pixel in a widget's corner is not, if it is wrong.
std::string faultOf(std::uint32_t found, std::uint32_t opacity, std::uint32_t drawn, std::uint32_t behind) {
    if (opacity == 0xFF && found != drawn) return "the widget";
    if (opacity == 0 && found != behind) return "what is behind it";
    return found == drawn || found == behind ? "" : "either";
}

struct Outline : testing::Test {
    std::unique_ptr<Display> display = startX11();
    RunningDesktop desktop{*display};

    Outline() { display->move(Display::width - 2, Display::height - 2); }
};

TEST_F(Outline, OfAWindowIsThatOfTheWidget) {
    const auto fans = widget("ZeltoFans", WidgetFamily::systemSmall, 1, 1);
    desktop.place({fans});
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    drawing::Renderer renderer;
    const auto displayList = desktop.displayList(fans);
    const auto rounded = renderer.draw(displayList, 1, drawing::Corners::rounded);
    const auto outlined = renderer.draw(displayList, 1, drawing::Corners::outlined);
    const auto shot = display->screenshot();
    const auto [left, top] = RunningDesktop::onDisplay(fans, {0, 0});
    int clear = 0, covered = 0;
    for (int y = 0; y < 164; ++y)
        for (int x = 0; x < 164; ++x) {
            if ((x > 40 && x < 124) || (y > 40 && y < 124)) continue;
            const std::uint32_t opacity = rounded.at(x, y) >> 24;
            (opacity == 0 ? clear : covered) += opacity == 0 || opacity == 0xFF ? 1 : 0;
            EXPECT_EQ(faultOf(shot.at(left + x, top + y), opacity, outlined.at(x, y), shot.at(0, 0)), "")
                << x << "," << y;
        }
    EXPECT_GT(clear, 300);
    EXPECT_GT(covered, 5000);
}

TEST_F(Outline, OfTheDragIconIsTheSame) {
    const auto fans = widget("ZeltoFans", WidgetFamily::systemSmall, 0, 0);
    desktop.place({fans});
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    const auto behind = display->screenshot().at(0, 0);
    const auto [x, y] = RunningDesktop::onDisplay(fans, {20, 82});
    display->move(x, y);
    display->press(Display::Button::primary);
    for (int i = 1; i <= 4; ++i) display->move(x + 90 * i, y + 45 * i);
    // It stands two tiles further to the right and one down, darker than the widget.
    const auto [left, top] =
        RunningDesktop::onDisplay(widget("ZeltoFans", WidgetFamily::systemSmall, 2, 1), {0, 0});
    EXPECT_TRUE(eventually([&] {
        const auto shot = display->screenshot();
        return shot.at(left + 82, top + 20) != behind && shot.at(left + 82, top + 2) != behind;
    }));
    const auto shot = display->screenshot();
    for (const int corner : {0, 163}) EXPECT_EQ(shot.at(left + corner, top + corner), behind);
    display->release(Display::Button::primary);
}

TEST_F(Outline, TextsAreDrawnAndSaidSoWhereTheFontIsMissing) {
    std::filesystem::create_directories(desktop.folder() / "fonts");
    std::ofstream(desktop.folder() / "fonts/fonts.conf")
        << "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"fonts.dtd\"><fontconfig>"
           "<dir>/usr/share/fonts/truetype/noto</dir><cachedir>"
        << (desktop.folder() / "fonts").string() << "</cachedir></fontconfig>";
    desktop.place({widget("ZeltoFans", WidgetFamily::systemSmall, 0, 0)});
    desktop.start({}, {"FONTCONFIG_FILE=" + (desktop.folder() / "fonts/fonts.conf").string()});
    EXPECT_TRUE(eventually([&] { return desktop.entry(desktop.widgets()[0]).has_value(); }));
    EXPECT_TRUE(
        desktop.log().starts_with("warning: the font Inter is not installed; texts are drawn in Noto"))
        << desktop.log();
}

}  // namespace
}  // namespace zelto::test
