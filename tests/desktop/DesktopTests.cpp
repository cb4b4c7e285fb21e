// The widgets on real displays: X11 with a window manager, and a Wayland compositor.

#include <algorithm>
#include <set>

#include <gtest/gtest.h>
#include <poll.h>

#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"
#include "tests/support/Process.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::test {

using namespace records;
using namespace widgetkit;
namespace {

using Button = Display::Button;
using host::PlacedWidget;

std::unique_ptr<Display> displayNamed(const std::string& name) {
    if (name == "Wayland") return startWayland();
    return startX11(name == "i3" ? Manager::i3 : Manager::openbox);
}

class DesktopOn : public testing::TestWithParam<const char*> {
  public:
    DesktopOn() : display_(displayNamed(GetParam())), desktop(*display_) {
        // Out of the widgets' way.
        display_->move(Display::width - 2, Display::height - 2);
    }

  private:
    std::unique_ptr<Display> display_;

  public:
    RunningDesktop desktop;
    Display& display() { return *display_; }

    void startWith(const std::vector<PlacedWidget>& widgets, const std::vector<std::string>& arguments = {}) {
        desktop.place(widgets);
        desktop.start(arguments);
        ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    }
    void drag(const PlacedWidget& from, int dx, int dy) {
        const auto [x, y] = RunningDesktop::onDisplay(from, {20, 82});
        display().move(x, y);
        display().press(Button::primary);
        // As a hand does: in steps.
        for (int i = 1; i <= 4; ++i) display().move(x + dx * i / 4, y + dy * i / 4);
        display().release(Button::primary);
        display().move(Display::width - 2, Display::height - 2);
    }
    PlacedWidget only() { return desktop.widgets().at(0); }
    /// Gives a widget the keyboard by a tap on what opens nothing else than its own link.
    void focus(const PlacedWidget& target) {
        const auto [x, y] = RunningDesktop::onDisplay(target, {8, 82});
        display().click(x, y);
        EXPECT_TRUE(desktop.openedLink());
    }
};
INSTANTIATE_TEST_SUITE_P(, DesktopOn, testing::Values("X11", "i3", "Wayland"), [](const auto& each) {
    return std::string(each.param);
});

TEST_P(DesktopOn, ShowsAllElevenWidgetsWhereTheyWerePlaced) {
    startWith(eleven());
    EXPECT_EQ(desktop.widgets(), eleven());
}

/// What a tap at a point of a widget is to open.
std::optional<std::string> linkAt(const layout::DisplayList& displayList, layout::Point point) {
    for (auto area = displayList.links.rbegin(); area != displayList.links.rend(); ++area)
        if (area->frame.contains(point)) return area->url;
    return displayList.widgetURL;
}

TEST_P(DesktopOn, ATapOpensTheLinkUnderIt) {
    startWith(eleven());
    std::set<std::string> opened;
    for (const PlacedWidget& each : desktop.widgets()) {
        const auto displayList = desktop.displayList(each);
        ASSERT_TRUE(displayList.widgetURL) << each.kind;
        const auto tap = [&](layout::Point point) {
            const auto [x, y] = RunningDesktop::onDisplay(each, point);
            display().click(x, y);
            const auto url = desktop.openedLink();
            EXPECT_EQ(url, linkAt(displayList, point)) << each.kind;
            if (url) opened.insert(url->substr(0, url->find_first_of("?", 8)));
        };
        tap({8, 82});
        for (const auto& link : displayList.links) tap(link.frame.center());
    }
    EXPECT_EQ(
        opened,
        (std::set<std::string>{
            "zelto://open", "zelto://awake", "zelto://eq", "zelto://clip", "zelto://join"}));
}

TEST_P(DesktopOn, ADragMovesAWidgetOnTheGridAndOpensNothing) {
    startWith(
        {widget("ZeltoFans", WidgetFamily::systemSmall, 0, 0),
         widget("ZeltoCare", WidgetFamily::systemSmall, 4, 0)});
    // 1.7 tiles to the right and 1.3 down come to two and one.
    drag(only(), 306, 234);
    ASSERT_TRUE(eventually([&] { return only().cell() == host::Cell{2, 1}; })) << desktop.log();
    EXPECT_TRUE(eventually([&] { return desktop.allSeen(); }));
    // Onto another widget, they change places.
    drag(only(), 360, -180);
    ASSERT_TRUE(eventually([&] { return only().cell() == host::Cell{4, 0}; })) << desktop.log();
    EXPECT_EQ(desktop.widgets()[1].cell(), (host::Cell{2, 1}));
    EXPECT_TRUE(eventually([&] { return desktop.allSeen(); }));
    drag(only(), -360, 180);
    ASSERT_TRUE(eventually([&] { return only().cell() == host::Cell{2, 1}; }));
    EXPECT_TRUE(eventually([&] { return desktop.allSeen(); }));
    // The first link that arrives is that of a tap.
    focus(only());
    const auto stored = readFile(desktop.folder() / "config/zelto/desktop.json");
    ASSERT_TRUE(stored);
    EXPECT_NE(stored->find(R"("column":2,"row":1)"), std::string::npos) << *stored;
}

TEST_P(DesktopOn, KeysWalkLinksChangeTheFamilyMoveAndRemove) {
    startWith({widget("ZeltoAwake", WidgetFamily::systemMedium, 1, 1)});
    focus(only());
    const auto links = desktop.displayList(only()).links;
    ASSERT_GE(links.size(), 4U);
    // The widget itself has the focus first.
    display().key("Tab");
    display().key("Return");
    EXPECT_EQ(desktop.openedLink(), links[0].url);
    display().key("Tab");
    display().key("Return");
    EXPECT_EQ(desktop.openedLink(), links[1].url);
    display().key("minus");
    ASSERT_TRUE(eventually([&] { return only().family == WidgetFamily::systemSmall; })) << desktop.log();
    display().key("plus");
    ASSERT_TRUE(eventually([&] { return only().family == WidgetFamily::systemMedium; }));
    display().key("ctrl+Right");
    ASSERT_TRUE(eventually([&] { return only().cell() == host::Cell{2, 1}; }));
    display().key("Delete");
    EXPECT_TRUE(eventually([&] { return desktop.widgets().empty(); }));
    EXPECT_TRUE(desktop.stop());
}

TEST_P(DesktopOn, TheMenuRemoves) {
    startWith({widget("ZeltoFans", WidgetFamily::systemSmall, 1, 1)});
    const auto [x, y] = RunningDesktop::onDisplay(only(), {30, 30});
    const auto before = display().screenshot();
    display().click(x, y, Button::secondary);
    // It is there when the pixels beside the pointer, out on the desktop's side, have changed.
    ASSERT_TRUE(
        eventually([&] { return display().screenshot().at(x + 40, y + 40) != before.at(x + 40, y + 40); }));
    // From below: the last entry.
    display().key("Up");
    display().key("Return");
    EXPECT_TRUE(eventually([&] { return desktop.widgets().empty(); })) << desktop.log();
}

TEST_P(DesktopOn, AStartFindsEverythingAgainAndShowsItAtOnce) {
    startWith(eleven());
    ASSERT_TRUE(eventually([&] {
        return std::ranges::all_of(
            eleven(), [&](const auto& each) { return desktop.entry(each).has_value(); });
    }));
    EXPECT_TRUE(desktop.stop());
    // Without an extension that answers, only what was stored can be there.
    desktop.start({"--extension", "/bin/false"});
    EXPECT_EQ(desktop.widgets(), eleven());
    EXPECT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    EXPECT_TRUE(eventually(
        [&] { return desktop.log().find("the widget extension ended by itself") != std::string::npos; }));
}

TEST_P(DesktopOn, WithoutAProgramForLinksTheWidgetSaysSo) {
    desktop.forgetHandler();
    startWith({widget("ZeltoFans", WidgetFamily::systemSmall, 0, 0)});
    const auto [x, y] = RunningDesktop::onDisplay(only(), {8, 82});
    display().click(x, y);
    EXPECT_TRUE(eventually(
        [&] { return desktop.log().find("no program opens zelto://open?tab=fans") != std::string::npos; }));
    EXPECT_TRUE(eventually([&] { return !desktop.isSeen(only()); }));
}

TEST_P(DesktopOn, EscapeCancelsADrag) {
    startWith({widget("ZeltoFans", WidgetFamily::systemSmall, 0, 0)});
    focus(only());
    const auto before = display().screenshot();
    const auto [x, y] = RunningDesktop::onDisplay(only(), {20, 82});
    display().move(x, y);
    display().press(Button::primary);
    for (int i = 1; i <= 4; ++i) display().move(x + 45 * i, y);
    const auto isAsBefore = [&] {
        const auto now = display().screenshot();
        // Above the pointer.
        const auto [left, top] = RunningDesktop::onDisplay(only(), {180, 30});
        for (int column = left; column < left + 164; ++column)
            if (now.at(column, top) != before.at(column, top)) return false;
        return true;
    };
    ASSERT_TRUE(eventually([&] { return !isAsBefore(); }));
    display().key("Escape");
    EXPECT_TRUE(eventually(isAsBefore));
    display().move(x + 200, y);
    display().release(Button::primary);
    // It answers when all of that has happened.
    EXPECT_TRUE(desktop.call("reload", {""}));
    EXPECT_EQ(only().cell(), (host::Cell{0, 0}));
    EXPECT_TRUE(isAsBefore());
}

TEST_P(DesktopOn, EscapeClosesTheGallery) {
    startWith({widget("ZeltoFans", WidgetFamily::systemSmall, 6, 3)});
    const auto before = display().screenshot();
    EXPECT_EQ(desktop.zelto({"desktop", "--gallery"}).status, 0);
    const int x = Display::width / 2, y = Display::height / 2;
    ASSERT_TRUE(eventually([&] { return display().screenshot().at(x, y) != before.at(x, y); }));
    EXPECT_TRUE(eventually([&] {
        display().key("Escape");
        return display().screenshot().at(x, y) == before.at(x, y);
    }));
}

TEST(Messages, LeaveTheWindowAsItIs) {
    for (const Manager manager : {Manager::openbox, Manager::i3}) {
        const auto display = startX11(manager);
        RunningDesktop desktop(*display);
        desktop.forgetHandler();
        const auto fans = widget("ZeltoFans", WidgetFamily::systemSmall, 0, 0);
        desktop.place({fans});
        desktop.start();
        ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
        const auto [x, y] = RunningDesktop::onDisplay(fans, {8, 82});
        display->click(x, y);
        EXPECT_TRUE(eventually([&] { return !desktop.isSeen(fans); }));
        const auto geometry =
            run({"/usr/bin/xdotool", "search", "--onlyvisible", "--name", "Ventoinhas", "getwindowgeometry"},
                "",
                display->environment());
        EXPECT_NE(geometry.output.find("Geometry: 164x164"), std::string::npos) << geometry.output;
    }
}

TEST_P(DesktopOn, KeysWalkFromWidgetToWidget) {
    startWith(
        {widget("ZeltoFans", WidgetFamily::systemSmall, 0, 0),
         widget("ZeltoStorage", WidgetFamily::systemSmall, 1, 0),
         widget("ZeltoBattery", WidgetFamily::systemSmall, 0, 1)});
    const auto placed = desktop.widgets();
    // Whoever has the keys has a ring around what they would open.
    const auto isAt = [&](std::size_t index, const std::string& tab) {
        EXPECT_TRUE(eventually([&] { return !desktop.isSeen(placed[index]); })) << tab;
        for (std::size_t i = 0; i < placed.size(); ++i)
            if (i != index) {
                EXPECT_TRUE(eventually([&] { return desktop.isSeen(placed[i]); })) << tab;
            }
        display().key("Return");
        EXPECT_EQ(desktop.openedLink(), "zelto://open?tab=" + tab);
    };
    // From anywhere, and again and again to the next.
    const auto next = [this] { EXPECT_EQ(desktop.zelto({"desktop", "--focus"}).status, 0) << desktop.log(); };
    next();
    isAt(0, "fans");
    next();
    isAt(1, "system");
    // Tab past the last link, round and round.
    display().key("Tab");
    isAt(2, "battery");
    display().key("Tab");
    isAt(0, "fans");
    display().key("Right");
    isAt(1, "system");
    display().key("Left");
    isAt(0, "fans");
    display().key("Down");
    isAt(2, "battery");
}

TEST_P(DesktopOn, ALinkCommandGetsTheLink) {
    desktop.forgetHandler();
    startWith(
        {widget("ZeltoFans", WidgetFamily::systemSmall, 0, 0)},
        {"--link-command", desktop.folder() / "handler"});
    const auto [x, y] = RunningDesktop::onDisplay(only(), {8, 82});
    display().click(x, y);
    EXPECT_EQ(desktop.openedLink(), "zelto://open?tab=fans");
}

TEST_P(DesktopOn, TheFirstStartPlacesEveryWidgetOnce) {
    desktop.start();
    const auto offered =
        decodeJSON<std::vector<WidgetDescription>>(desktop.zelto({"gallery", "--json"}).output).value();
    ASSERT_TRUE(eventually([&] { return desktop.widgets().size() == offered.size(); })) << desktop.log();
    EXPECT_TRUE(eventually([&] { return desktop.allSeen(); }));
    for (const PlacedWidget& each : desktop.widgets()) EXPECT_TRUE(desktop.call("remove", {each.id}));
    EXPECT_TRUE(desktop.widgets().empty());
    EXPECT_TRUE(desktop.stop());
    // Who has removed them all wants none.
    desktop.start();
    EXPECT_EQ(desktop.zelto({"reload"}).status, 0);
    EXPECT_TRUE(desktop.widgets().empty());
}

TEST_P(DesktopOn, ASecondStartHandsItsWishOver) {
    startWith({widget("ZeltoFans", WidgetFamily::systemSmall, 0, 0)});
    const auto second = desktop.zelto({"desktop", "--add", "ZeltoBattery:medium"});
    EXPECT_EQ(second.status, 0) << second.errors;
    ASSERT_EQ(desktop.widgets().size(), 2U);
    EXPECT_EQ(desktop.widgets()[1].kind, "ZeltoBattery");
    EXPECT_EQ(desktop.widgets()[1].cell(), (host::Cell{1, 0}));
    const auto unknown = desktop.zelto({"desktop", "--add", "ZeltoNothing:small"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_NE(unknown.errors.find("no widget 'ZeltoNothing'"), std::string::npos) << unknown.errors;
}

TEST_P(DesktopOn, TheGalleryAddsWidgets) {
    startWith({widget("ZeltoFans", WidgetFamily::systemSmall, 6, 3)});
    EXPECT_EQ(desktop.zelto({"desktop", "--gallery"}).status, 0);
    const auto before = display().screenshot();
    ASSERT_TRUE(eventually([&] { return display().screenshot() != before; }));
    // The gallery has the keyboard; its first look is the first widget's smallest.
    ASSERT_TRUE(eventually([&] {
        display().key("Tab");
        display().key("Return");
        return desktop.widgets().size() > 1;
    })) << desktop.log();
    EXPECT_NE(desktop.widgets()[1].kind, "");
}

TEST_P(DesktopOn, ACountdownRunsInItsOwnRectangle) {
    startWith({widget("ZeltoAwake", WidgetFamily::systemSmall, 0, 0)});
    const auto displayList = desktop.displayList(only());
    const auto countdown = std::ranges::find_if(displayList.items, [](const auto& item) {
        return std::holds_alternative<layout::PlacedCountdown>(item);
    });
    ASSERT_NE(countdown, displayList.items.end());
    const auto first = display().screenshot();
    for (int i = 0; i < 2; ++i) {
        const auto before = display().screenshot();
        ASSERT_TRUE(eventually([&] { return display().screenshot() != before; }));
        // All but the seconds is as it was.
        EXPECT_TRUE(desktop.isSeen(only()));
    }
    EXPECT_NE(display().screenshot(), first);
}

TEST(Countdown, StopsWhenNobodySeesIt) {
    const auto display = startX11();
    RunningDesktop desktop(*display);
    display->move(Display::width - 2, Display::height - 2);
    // Where the gallery comes to cover it.
    desktop.place({widget("ZeltoAwake", WidgetFamily::systemSmall, 2, 1)});
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    const auto switches = [&] {
        const std::string status =
            readFile("/proc/" + std::to_string(desktop.process().pid()) + "/status").value();
        return std::stol(status.substr(status.find("\nvoluntary_ctxt_switches:") + 25));
    };
    // A period that is long enough to tell a clock that ticks from one that does not.
    const auto inThreeSeconds = [&] {
        const long before = switches();
        poll(nullptr, 0, 3000);
        return switches() - before;
    };
    EXPECT_GE(inThreeSeconds(), 2);
    ASSERT_EQ(desktop.zelto({"desktop", "--gallery"}).status, 0);
    EXPECT_TRUE(eventually([&] { return inThreeSeconds() == 0; }));
}

}  // namespace
}  // namespace zelto::test
