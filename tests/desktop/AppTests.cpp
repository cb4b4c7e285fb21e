// The app behind the widgets: real taps in the real host reach the real agent, whose answer is seen on the
// display.

#include <fstream>

#include <gtest/gtest.h>

#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"
#include "tests/support/Paths.hpp"

namespace zelto::test {
namespace {

using host::PlacedWidget;
using shared::WidgetSnapshot;
using widgetkit::WidgetFamily;

/// A screen saver, which keeps whoever asks awake.
constexpr const char* screen = "org.freedesktop.ScreenSaver";

struct Taps : testing::TestWithParam<const char*> {
    std::unique_ptr<Display> display =
        GetParam() == std::string("sway") ? std::unique_ptr<Display>(startWayland()) : startX11();
    RunningDesktop desktop{*display};
    std::optional<Child> screenSaver, agent;
    const PlacedWidget awake = widget("ZeltoAwake", WidgetFamily::systemMedium, 0, 0);
    const PlacedWidget fans = widget("ZeltoFans", WidgetFamily::systemSmall, 2, 0);

    void SetUp() override {
        // No program is registered, and no other keeps the snapshot.
        desktop.forgetHandler();
        std::filesystem::remove(snapshotFile());
        const auto variables = desktop.environment();
        screenSaver.emplace(
            std::vector<std::string>{
                "/usr/bin/python3",
                "-m",
                "dbusmock",
                "--logfile",
                calls(),
                screen,
                "/org/freedesktop/ScreenSaver",
                screen},
            variables,
            desktop.folder() / "mock.log");
        ASSERT_TRUE(eventually([&] { return mock("Inhibit", "ss", "u", "ret = 4711"); }));
        ASSERT_TRUE(mock("UnInhibit", "u", "", ""));
        agent.emplace(
            std::vector<std::string>{
                programFolder() / "zelto-agent",
                "--home",
                desktop.folder(),
                "--system-bus",
                "unix:path=/nonexistent/bus"},
            variables,
            desktop.folder() / "agent.log");
        desktop.place({awake, fans});
        desktop.start();
        ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    }

    std::filesystem::path snapshotFile() const {
        return desktop.folder() / "Library/Application Support/Zelto/widget.json";
    }
    std::string calls() const { return desktop.folder() / "calls"; }
    bool mock(const char* method, const char* in, const char* out, const char* code) const {
        return run({"/usr/bin/gdbus",
                    "call",
                    "--session",
                    "--dest",
                    screen,
                    "--object-path",
                    "/org/freedesktop/ScreenSaver",
                    "--method",
                    "org.freedesktop.DBus.Mock.AddMethod",
                    "--",
                    screen,
                    method,
                    in,
                    out,
                    code},
                   "",
                   desktop.environment())
                   .status == 0;
    }
    std::string called() const { return readFile(calls()).value_or(""); }
    void tap(layout::Point point) {
        const auto [x, y] = RunningDesktop::onDisplay(awake, point);
        display->click(x, y);
        // What lies under the pointer is lighter.
        display->move(1000, 700);
    }
    void tapButton(const std::string& url) {
        for (const auto& link : desktop.displayList(awake).links)
            if (link.url == url) {
                tap(link.frame.center());
                return;
            }
        FAIL() << "no button with " << url;
    }
    /// Whether the widget shows just that, in the pixels too.
    bool shows(const std::string& text) {
        return eventually([&] {
            const auto shown = desktop.entry(awake);
            if (!shown) return false;
            const std::string dumped = layout::dump(desktop.displayList(awake));
            return dumped.find('"' + text + '"') != std::string::npos && desktop.isSeen(awake);
        });
    }
    std::optional<WidgetSnapshot> snapshot() const {
        auto snapshot = records::decodeJSON<WidgetSnapshot>(readFile(snapshotFile()).value_or(""));
        return snapshot ? std::optional(*std::move(snapshot)) : std::nullopt;
    }
};

TEST_P(Taps, OnEveryAwakeButtonDoWhatItSays) {
    ASSERT_TRUE(shows("Desligado"));
    for (const auto& [minutes, end] : {std::pair{"30", 30 * 60}, {"60", 3600}, {"120", 7200}}) {
        tapButton("zelto://awake?minutes=" + std::string(minutes));
        EXPECT_TRUE(eventually([&] {
            const auto now = snapshot();
            return now && now->awakeActive && now->awakeEnd &&
                   std::abs(*now->awakeEnd - Date::now() - end) < 30;
        })) << minutes;
        EXPECT_TRUE(shows("Acordado"));
    }
    EXPECT_TRUE(eventually([&] { return called().find(" Inhibit \"Zelto\"") != std::string::npos; }))
        << called();
    tapButton("zelto://awake?minutes=0");
    EXPECT_TRUE(shows("até desligar"));
    EXPECT_EQ(called().find("UnInhibit"), std::string::npos);
    tapButton("zelto://awake?action=off");
    EXPECT_TRUE(shows("Desligado"));
    EXPECT_TRUE(eventually([&] { return called().find("UnInhibit 4711") != std::string::npos; })) << called();
    // Beside the buttons.
    tap({8, 60});
    EXPECT_TRUE(shows("Acordado"));
    tap({8, 60});
    EXPECT_TRUE(shows("Desligado"));
    EXPECT_EQ(desktop.log(), "");
}

TEST_P(Taps, OnATabOpenItsPage) {
    const auto opened = desktop.folder() / "pages";
    std::filesystem::create_directories(desktop.folder() / "data/applications");
    std::ofstream(desktop.folder() / "page")
        << "echo \"$DESKTOP_STARTUP_ID|$1\" >> " + opened.string() + "\n";
    std::ofstream(desktop.folder() / "data/applications/pages.desktop")
        << "[Desktop Entry]\nType=Application\nName=Pages\nExec=/bin/sh "
        << (desktop.folder() / "page").string() << " %u\nMimeType=text/html;\n";
    std::ofstream(desktop.folder() / "data/applications/mimeapps.list")
        << "[Default Applications]\ntext/html=pages.desktop\n";
    const auto [x, y] = RunningDesktop::onDisplay(fans, {8, 82});
    display->click(x, y);
    EXPECT_TRUE(eventually([&] { return readFile(opened).value_or("").ends_with("docs/tabs/fans.html\n"); }))
        << desktop.log() << readFile(desktop.folder() / "agent.log").value_or("");
    // The tap's own token, so that the window comes to the front.
    if (GetParam() == std::string("X11")) {
        EXPECT_TRUE(readFile(opened).value_or("").starts_with("zelto_TIME"));
    }
}

INSTANTIATE_TEST_SUITE_P(, Taps, testing::Values("X11", "sway"), [](const auto& each) {
    return std::string(each.param);
});

}  // namespace
}  // namespace zelto::test
