// With keys only, from a desktop's bound key on.

#include <algorithm>
#include <utility>

#include <gtest/gtest.h>

#include "foundation/Files.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"

namespace zelto::test {

using namespace widgetkit;
namespace {

std::unique_ptr<Display> twoMonitors(const std::string& name) {
    if (name == "Wayland") return startTwoOutputs();
    return startX11(name == "i3" ? Manager::i3 : Manager::openbox, 2);
}

class Keyboard : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(, Keyboard, testing::Values("X11", "i3", "Wayland"), [](const auto& each) {
    return std::string(each.param);
});

TEST_P(Keyboard, AddsWalksOpensMovesRemovesAndUndoes) {
    const auto display = twoMonitors(GetParam());
    display->move(Display::width / 2 - 2, Display::height - 2);
    RunningDesktop desktop(*display);
    const auto fans = widget("ZeltoFans", WidgetFamily::systemSmall, 0, 0);
    desktop.place({fans});
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    const auto added = [&] { return desktop.widgets().at(1); };
    // Whoever has the keys has a blue ring, also over what is read of it meanwhile.
    const auto hasKeys = [&](const host::PlacedWidget& each) {
        const auto [x, y] = RunningDesktop::onDisplay(each, {82, 2});
        const std::uint32_t pixel = display->screenshot().at(x + (each.monitor ? Display::width : 0), y);
        return (pixel & 0xFF) > 200 && (pixel >> 16 & 0xFF) < 120;
    };

    // What a key of the desktop's would run.
    ASSERT_EQ(desktop.zelto({"desktop", "focus"}).status, 0);
    ASSERT_TRUE(eventually([&] { return hasKeys(fans); }));
    const auto before = display->screenshot();
    display->key("Insert");
    // Its text field has the keys when there is a ring around it.
    const auto rings = [&] { return std::ranges::count(display->screenshot().pixels, 0xFF4F8DF7U); };
    ASSERT_TRUE(eventually([&] { return rings() > 3000; }));
    display->key("Tab");
    display->key("Return");
    ASSERT_TRUE(eventually([&] { return desktop.widgets().size() == 2; })) << desktop.log();
    const int x = Display::width / 2, y = Display::height / 2;
    display->key("Escape");
    ASSERT_TRUE(eventually([&] { return display->screenshot().at(x, y) == before.at(x, y); }));
    ASSERT_TRUE(eventually([&] { return desktop.isSeen(added()); })) << desktop.log();

    // Where the keys are by now depends on the window manager.
    for (int i = 0; i < 3 && !hasKeys(fans); ++i) {
        ASSERT_EQ(desktop.zelto({"desktop", "focus"}).status, 0);
        ASSERT_TRUE(eventually([&] { return hasKeys(fans) != hasKeys(added()); }));
    }
    ASSERT_TRUE(hasKeys(fans));
    display->key("Right");
    ASSERT_TRUE(eventually([&] { return hasKeys(added()); }));
    display->key("Return");
    EXPECT_EQ(desktop.openedLink(), desktop.displayList(added()).widgetURL);

    for (int i = 0; i < 10 && !added().monitor; ++i) {
        const auto from = added();
        display->key("ctrl+Right");
        ASSERT_TRUE(eventually([&] { return added() != from && hasKeys(added()); })) << i << desktop.log();
    }
    const auto there = added();
    EXPECT_EQ(there.cell(), (host::Cell{0, 0}));

    display->key("Delete");
    ASSERT_TRUE(eventually([&] { return desktop.widgets().size() == 1; })) << desktop.log();
    ASSERT_TRUE(eventually([&] {
        display->key("ctrl+z");
        return desktop.widgets().size() == 2;
    })) << desktop.log();
    EXPECT_EQ(added(), there);
    ASSERT_TRUE(eventually([&] { return hasKeys(there) && desktop.entry(there); }));
    display->key("Return");
    EXPECT_EQ(desktop.openedLink(), desktop.displayList(there).widgetURL);
    EXPECT_TRUE(desktop.stop());
}

struct GalleryPages : testing::Test {
    std::unique_ptr<Display> display = startX11();
    RunningDesktop desktop{*display};

    void open() {
        display->move(Display::width - 2, Display::height - 2);
        desktop.place({widget("ZeltoFans", WidgetFamily::systemSmall, 6, 3)});
        desktop.start();
        ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
        const auto before = display->screenshot();
        ASSERT_EQ(desktop.zelto({"desktop", "--gallery"}).status, 0);
        const int x = Display::width / 2, y = Display::height / 2;
        ASSERT_TRUE(eventually([&] { return display->screenshot().at(x, y) != before.at(x, y); }));
        // The text field has the keys when there is a ring around it.
        ASSERT_TRUE(
            eventually([&] { return std::ranges::count(display->screenshot().pixels, 0xFF4F8DF7U) > 500; }));
    }
    /// One after the other, each when what the one before did is drawn: what is not laid out yet has no
    /// order.
    void keys(std::initializer_list<const char*> names) {
        for (const char* name : names) {
            auto before = display->screenshot();
            display->key(name);
            EXPECT_TRUE(eventually([&] { return display->screenshot() != before; })) << name;
            EXPECT_TRUE(eventually([&] {
                auto now = display->screenshot();
                return std::exchange(before, now) == now;
            }));
        }
    }
};

TEST_F(GalleryPages, MoveWhatIsPlaced) {
    open();
    // To the page of what is placed, past the next page's button, and there to the first arrow.
    keys({"shift+Tab", "Left", "space", "Tab", "Tab"});
    display->key("space");
    EXPECT_TRUE(eventually([&] { return desktop.widgets().at(0).column == 5; })) << desktop.log();
}

TEST_F(GalleryPages, ChangeTheSettings) {
    open();
    keys({"shift+Tab", "space", "Tab", "space"});
    EXPECT_TRUE(eventually([&] {
        const auto file = readFile(desktop.folder() / "config/zelto/desktop.json").value_or("");
        return file.find("\"settings\": {\"locked\":true}") != std::string::npos;
    })) << readFile(desktop.folder() / "config/zelto/desktop.json").value_or("");
}

TEST_F(GalleryPages, FindByName) {
    open();
    // The only one that is found is the first that Tab comes to.
    keys({"e", "q", "u", "Tab"});
    display->key("Return");
    ASSERT_TRUE(eventually([&] { return desktop.widgets().size() > 1; }));
    EXPECT_EQ(desktop.widgets().at(1).kind, "ZeltoEqualizer");
}

}  // namespace
}  // namespace zelto::test
