// What holds for all widgets, changed while they run.

#include <algorithm>

#include <gtest/gtest.h>

#include "drawing/Renderer.hpp"
#include "foundation/Files.hpp"
#include "host/EntryStore.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"
#include "tests/support/Process.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::test {

using namespace widgetkit;
namespace {

struct Settings : testing::Test {
    std::unique_ptr<Display> display = startX11();
    RunningDesktop desktop{*display};
    const host::PlacedWidget fans = widget("ZeltoFans", WidgetFamily::systemSmall, 1, 1);

    Settings() { display->move(Display::width - 2, Display::height - 2); }

    void start(
        const std::vector<host::PlacedWidget>& widgets, const std::vector<std::string>& variables = {}) {
        desktop.place(widgets);
        desktop.start({}, variables);
        ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    }
    std::filesystem::path file() const { return desktop.folder() / "config/zelto/desktop.json"; }
    void edit(const std::string& settings) const {
        std::string text = readFile(file()).value();
        text = text.substr(0, text.rfind(']') + 1) + ", \"settings\": " + settings + "}";
        ASSERT_TRUE(writeFileAtomically(file(), text));
    }
    drawing::Picture area(int x, int y, int width, int height) {
        const auto shot = display->screenshot();
        drawing::Picture out{width, height, {}};
        for (int row = y; row < y + height; ++row)
            for (int column = x; column < x + width; ++column) out.pixels.push_back(shot.at(column, row));
        return out;
    }
    void drag() {
        const auto [x, y] = RunningDesktop::onDisplay(fans, {20, 82});
        display->move(x, y);
        display->press(Display::Button::primary);
        for (int i = 1; i <= 4; ++i) display->move(x + 90 * i, y);
        display->release(Display::Button::primary);
        display->move(Display::width - 2, Display::height - 2);
    }
};

TEST_F(Settings, APersonsEditIsTakenOverAtOnce) {
    start({fans});
    auto moved = fans;
    moved.column = 2;
    desktop.place({moved});
    EXPECT_TRUE(eventually([&] { return desktop.isSeen(moved); })) << desktop.log();
    edit(R"({"scale": 2})");
    EXPECT_TRUE(eventually([&] { return desktop.isSeen(moved, 2); })) << desktop.log();
    edit(R"({"margin": 90})");
    EXPECT_TRUE(eventually([&] {
        return area(16 + 90 + 2 * 180, 16 + 90 + 180, 164, 164).at(82, 2) != 0xFF000000U &&
               area(16 + 2 * 180, 16 + 180, 80, 80).at(2, 40) == 0xFF000000U;
    }));
    // What makes no sense is kept aside, and what was there stays.
    ASSERT_TRUE(writeFileAtomically(file(), "{"));
    EXPECT_TRUE(eventually([&] {
        return std::filesystem::exists(desktop.folder() / "config/zelto/desktop.broken-1.json") &&
               readFile(file()).value_or("").find("ZeltoFans") != std::string::npos;
    }));
    EXPECT_EQ(desktop.widgets(), std::vector{moved});
}

TEST_F(Settings, LockedWidgetsStayWhereTheyAre) {
    start({fans});
    edit(R"({"locked": true})");
    // Once it is known, a drag says so on the widget.
    EXPECT_TRUE(eventually([&] {
        drag();
        return !desktop.isSeen(desktop.widgets().front());
    }));
    EXPECT_EQ(desktop.widgets().front().row, 1);
    const auto there = desktop.widgets();
    drag();
    EXPECT_TRUE(desktop.call("reload", {""}));
    EXPECT_EQ(desktop.widgets(), there);
}

TEST_F(Settings, ASecondStartHandsItsOptionsOver) {
    start({fans});
    EXPECT_EQ(desktop.zelto({"desktop", "--scale", "2"}).status, 0);
    EXPECT_TRUE(eventually([&] { return desktop.isSeen(fans, 2); })) << desktop.log();
    const auto refused = desktop.zelto({"desktop", "--home", "/elsewhere", "--scale", "1"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "zelto-desktop: --home cannot be changed while the widgets are running\n");
    EXPECT_TRUE(eventually([&] { return desktop.isSeen(fans); }));
    for (const auto& words :
         {std::vector<std::string>{"desktop", "--now", "frob"},
          {"desktop", "--extension", "/nonexistent"},
          {"desktop", "--locale", "xx_frob"},
          {"desktop", "frob"},
          {"frob"}}) {
        const auto done = desktop.zelto(words);
        EXPECT_EQ(done.status, 2) << words.back();
        EXPECT_NE(done.errors.find(words.back()), std::string::npos) << done.errors;
    }
}

TEST_F(Settings, TheCommandLineReachesTheRunningWidgets) {
    start({fans});
    const auto list = [&] { return desktop.zelto({"desktop", "list"}).output; };
    EXPECT_EQ(list(), "ZeltoFans  ZeltoFans  small  1,1\n");
    const auto added = desktop.zelto({"desktop", "add", "battery", "medium"});
    const std::string id = added.output.substr(0, added.output.find('\n'));
    EXPECT_EQ(list(), "ZeltoFans  ZeltoFans  small  1,1\n" + id + "  ZeltoBattery  medium  0,0\n");
    EXPECT_EQ(desktop.zelto({"desktop", "move", "fans", "4", "2"}).status, 0);
    EXPECT_EQ(desktop.zelto({"desktop", "resize", "ZeltoBattery", "small"}).status, 0);
    EXPECT_EQ(desktop.zelto({"desktop", "remove", id}).status, 0);
    EXPECT_EQ(list(), "ZeltoFans  ZeltoFans  small  4,2\n");
    EXPECT_EQ(desktop.zelto({"desktop", "undo"}).output, id + "\n");
    EXPECT_EQ(list(), "ZeltoFans  ZeltoFans  small  4,2\n" + id + "  ZeltoBattery  small  0,0\n");
    const auto unknown = desktop.zelto({"desktop", "remove", "frob"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_NE(unknown.errors.find("no placed widget 'frob'"), std::string::npos) << unknown.errors;
    EXPECT_EQ(desktop.zelto({"desktop", "add", "fans", "--monitor", "DP-9"}).status, 2);
    EXPECT_EQ(desktop.zelto({"desktop", "add", "fans:small", "--monitor", "DP-9"}).status, 1);
    EXPECT_EQ(desktop.zelto({"reload", "fans"}).status, 0);
    EXPECT_EQ(desktop.zelto({"desktop", "quit"}).status, 0);
    EXPECT_EQ(desktop.process().wait(), 0);
}

TEST_F(Settings, AWishThatCannotBeEndsTheStartAndChangesNothing) {
    for (const char* wish : {"Frob:small", "ZeltoBattery:large"}) {
        desktop.launch({"--add", wish});
        EXPECT_EQ(desktop.process().wait(), 1) << desktop.log();
        EXPECT_FALSE(std::filesystem::exists(file())) << wish;
    }
}

TEST_F(Settings, HighContrastIsBlackWithinAWhiteBorder) {
    // As desktops without a settings daemon say it.
    std::filesystem::create_directories(desktop.folder() / "config/gtk-3.0");
    ASSERT_TRUE(writeFileAtomically(
        desktop.folder() / "config/gtk-3.0/settings.ini", "[Settings]\ngtk-theme-name=HighContrast\n"));
    desktop.place({fans});
    desktop.start();
    EXPECT_TRUE(eventually([&] {
        const auto tile = area(16 + 180, 16 + 180, 164, 164);
        return tile.at(82, 0) == 0xFFFFFFFFU && tile.at(82, 1) == 0xFFFFFFFFU &&
               tile.at(82, 2) == 0xFF000000U && tile.at(10, 82) == 0xFF000000U;
    })) << desktop.log();
}

TEST_F(Settings, WhatIsNotOfferedSaysSoInPlaceOfAPicture) {
    desktop.place({widget("Frob", WidgetFamily::systemSmall, 0, 0)});
    desktop.start();
    // The blank tile's own colour, and words on it.
    const auto explains = [&](int left, int side) {
        const auto tile = area(left, left, side, side);
        const auto isBright = [](std::uint32_t pixel) { return (pixel & 0xFF) > 200; };
        return tile.at(side / 16, side / 4) == 0xFF1C1C21U &&
               std::ranges::count_if(tile.pixels, isBright) > 50;
    };
    EXPECT_TRUE(eventually([&] { return explains(16, 164); }));
    // Also when its window is made anew.
    EXPECT_EQ(desktop.zelto({"desktop", "--scale", "2"}).status, 0);
    EXPECT_TRUE(eventually([&] { return explains(32, 328); }));
}

TEST_F(Settings, AnOldPictureCarriesItsAge) {
    start({fans});
    ASSERT_TRUE(eventually([&] { return desktop.entry(fans).has_value(); }));
    EXPECT_TRUE(desktop.stop());
    // As it would be an hour after the extension broke.
    auto entry = *desktop.entry(fans);
    entry.date = Date::now() - 3600;
    const Reply reply{.timeline = ArchivedTimeline{{entry}, entry.date + 300}};
    ASSERT_TRUE(host::EntryStore(desktop.folder() / "cache/zelto/widgets")
                    .save(fans.look(), encodeReply(reply).value()));
    desktop.start({"--extension", "/bin/false"});
    const auto picture = drawing::Renderer().draw(desktop.displayList(fans), 1, drawing::Corners::rounded);
    // A mark at the top, and all below it as it is.
    EXPECT_TRUE(eventually([&] {
        const auto shown = area(16 + 180, 16 + 180, 164, 164);
        const auto differs = [&](int y) {
            for (int x = 30; x < 134; ++x)
                if (shown.at(x, y) != picture.at(x, y)) return true;
            return false;
        };
        bool isBelow = false;
        for (int y = 24; y < 150; ++y) isBelow = isBelow || differs(y);
        return differs(10) && !isBelow;
    })) << desktop.log();
}

}  // namespace
}  // namespace zelto::test
