// The folders and the bus that a running host stands on, as they come and go.

#include <csignal>
#include <string>

#include <gtest/gtest.h>

#include "shared/WidgetSnapshot.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"
#include "tests/support/Paths.hpp"
#include "ui/Reading.hpp"

namespace zelto::test {
namespace {

struct Folders : testing::Test {
    std::unique_ptr<Display> display = startX11();
    RunningDesktop desktop{*display};
    const host::PlacedWidget clipboard =
        widget("ZeltoClipboard", widgetkit::WidgetFamily::systemMedium, 0, 0);
    const std::filesystem::path library = desktop.folder() / "Library";

    bool reads(const std::string& text) {
        const auto shown = desktop.entry(clipboard);
        return shown &&
               ui::joined(ui::readingTexts(shown->view, Date::now())).find(text) != std::string::npos;
    }
    void save(const std::string& text) const {
        auto snapshot = shared::WidgetSnapshot::sample();
        snapshot.clips[0].text = text;
        snapshot.save(HomeLookup::fixed(desktop.folder()));
    }
};

TEST_F(Folders, ASnapshotIsSeenHoweverLateItsFolderComes) {
    std::filesystem::remove_all(library);
    desktop.place({clipboard});
    desktop.start();
    EXPECT_TRUE(eventually([this] { return reads("Copie algo e ele aparece aqui."); })) << desktop.log();
    save("the first");
    EXPECT_TRUE(eventually([this] { return reads("the first"); })) << desktop.log();
    std::filesystem::remove_all(library);
    EXPECT_TRUE(eventually([this] { return reads("Copie algo e ele aparece aqui."); })) << desktop.log();
    save("the second");
    EXPECT_TRUE(eventually([this] { return reads("the second"); })) << desktop.log();
    // Removed and made again in one go.
    std::filesystem::remove_all(library);
    save("the third");
    EXPECT_TRUE(eventually([this] { return reads("the third"); })) << desktop.log();
    EXPECT_TRUE(desktop.stop());
    EXPECT_EQ(desktop.log(), "");
}

TEST_F(Folders, AChangedSnapshotIsShownWithoutBeingAskedFor) {
    desktop.place({clipboard});
    desktop.start();
    save("the first");
    EXPECT_TRUE(eventually([this] { return reads("the first"); })) << desktop.log();
    const auto file = library / "Application Support/Zelto/widget.json";
    for (const char* text : {"put in its place", "once more"}) {
        save(text);
        EXPECT_TRUE(eventually([&] { return reads(text) && desktop.isSeen(clipboard); })) << desktop.log();
    }
    std::filesystem::remove(file);
    EXPECT_TRUE(eventually([this] { return reads("Copie algo e ele aparece aqui."); })) << desktop.log();
    EXPECT_TRUE(desktop.stop());
    EXPECT_EQ(desktop.log(), "");
}

TEST_F(Folders, NothingIsDoneForAScreenThatNobodySees) {
    desktop.place({clipboard});
    desktop.start();
    save("the first");
    EXPECT_TRUE(eventually([this] { return reads("the first"); })) << desktop.log();
    EXPECT_TRUE(desktop.tellsSeen(true));
    desktop.screenSaver(true);
    EXPECT_TRUE(eventually([this] { return desktop.tellsSeen(false); })) << desktop.log();
    save("the second");
    // It is still answered, and has asked for nothing.
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(desktop.call("list"));
    EXPECT_TRUE(reads("the first"));
    desktop.screenSaver(false);
    EXPECT_TRUE(eventually([this] { return reads("the second"); })) << desktop.log();
    EXPECT_TRUE(desktop.tellsSeen(true));
    EXPECT_TRUE(desktop.stop());
}

TEST_F(Folders, OneHostHasThemWithAMessageBusOrWithout) {
    desktop.place({clipboard});
    desktop.start();
    auto environment = desktop.environment();
    std::erase_if(environment, [](const std::string& each) { return each.starts_with("DBUS_"); });
    environment.emplace_back("DBUS_SESSION_BUS_ADDRESS=unix:path=/no/such/bus");
    const auto second = run({programFolder() / "zelto-desktop", "--home", desktop.folder()}, "", environment);
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(
        second.errors,
        "zelto-desktop: another zelto-desktop is already running on the files in " +
            (desktop.folder() / "config/zelto").string() + "\n");
    EXPECT_TRUE(desktop.stop());
}

TEST_F(Folders, ABusThatComesBackFindsTheHostOnIt) {
    desktop.place({clipboard});
    desktop.start();
    EXPECT_TRUE(eventually([this] { return desktop.allSeen(); }));
    desktop.restartBus();
    EXPECT_TRUE(eventually([this] { return desktop.call("list").has_value(); })) << desktop.log();
    EXPECT_EQ(
        desktop.log(),
        "warning: the message bus has gone away; other programs cannot reach the widgets until it is "
        "back\n"
        "info: the message bus is back; other programs can reach the widgets\n");
    EXPECT_TRUE(desktop.stop());
}

TEST_F(Folders, AnExtensionThatDiesIdleIsToldOf) {
    desktop.place({clipboard});
    desktop.start();
    ASSERT_TRUE(eventually([this] { return reads("toque para copiar"); })) << desktop.log();
    for (const auto& each :
         run({"/usr/bin/pkill", "-KILL", "-P", std::to_string(desktop.process().pid()), "zelto-widgets"})
             .output)
        ADD_FAILURE() << each;
    EXPECT_TRUE(eventually([this] {
        return desktop.log() ==
               "warning: the widget extension died (signal 9, Killed) while nothing was asked; to be "
               "started "
               "when something is\n";
    })) << desktop.log();
    ASSERT_TRUE(desktop.call("reload", {""}));
    EXPECT_TRUE(desktop.stop());
}

TEST_F(Folders, AnExtensionThatIsStoppedDiesWithAKilledHost) {
    desktop.place({clipboard});
    desktop.start();
    ASSERT_TRUE(eventually([this] { return reads("toque para copiar"); })) << desktop.log();
    const auto found =
        run({"/usr/bin/pgrep", "-P", std::to_string(desktop.process().pid()), "zelto-widgets"}).output;
    const pid_t extension = std::stoi(found);
    ASSERT_EQ(kill(extension, SIGSTOP), 0);
    desktop.process().kill(SIGKILL);
    desktop.process().wait();
    EXPECT_TRUE(eventually([extension] { return kill(extension, 0) != 0; }));
}

}  // namespace
}  // namespace zelto::test
