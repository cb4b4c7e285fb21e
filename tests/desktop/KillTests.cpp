// Deaths at random moments: of the extension, and of the host.

#include <csignal>
#include <filesystem>
#include <random>
#include <set>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>

#include "foundation/Files.hpp"
#include "host/DesktopLayoutStore.hpp"
#include "host/EntryStore.hpp"
#include "shared/WidgetSnapshot.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Pictures.hpp"
#include "ui/Outline.hpp"

namespace zelto::test {
namespace {

/// A display in whose place another one can be put.
class Replaceable : public Display {
  public:
    Replaceable() { replace(); }
    void replace() {
        now_ = startX11();
        // Where it highlights nothing.
        move(width - 2, height - 2);
    }

    std::vector<std::string> environment() const override { return now_->environment(); }
    drawing::Picture screenshot() override { return now_->screenshot(); }
    void move(int x, int y) override { now_->move(x, y); }
    void press(Button button) override { now_->press(button); }
    void release(Button button) override { now_->release(button); }
    void key(const std::string& name) override { now_->key(name); }

  private:
    std::unique_ptr<Display> now_;
};

struct Deaths : testing::Test {
    Replaceable display;
    RunningDesktop desktop{display};
    std::mt19937 random{20'261'121};

    /// Lets a moment of random length pass, which is what these tests are about.
    void moment(int atMost) { poll(nullptr, 0, std::uniform_int_distribution<int>(0, atMost)(random)); }

    /// The extensions that the host runs now: the one that it keeps and those that it asks apart.
    std::vector<pid_t> extensions() { return childrenOf(desktop.process().pid()); }
    static std::vector<pid_t> childrenOf(pid_t parent) {
        std::vector<pid_t> pids;
        std::error_code gone;
        const auto threads = "/proc/" + std::to_string(parent) + "/task";
        for (const auto& thread : std::filesystem::directory_iterator(threads, gone)) {
            std::istringstream children(readFile(thread.path() / "children").value_or(""));
            for (pid_t pid = 0; children >> pid;) pids.push_back(pid);
        }
        return pids;
    }
};

TEST_F(Deaths, OfTheExtensionFiveHundredTimesLeaveEveryWidgetItsPicture) {
    desktop.place(eleven());
    desktop.start({"--restart-pause", "0.001"});
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    const pid_t host = desktop.process().pid();

    std::set<pid_t> dead;
    for (int deaths = 0, rounds = 0; deaths < 500; ++rounds) {
        ASSERT_LT(rounds, 20'000) << "it is not started again: " << desktop.log();
        ASSERT_TRUE(desktop.call("reload", {""}));
        moment(20);
        const auto running = extensions();
        if (running.empty()) continue;
        const pid_t pid = running[std::uniform_int_distribution<std::size_t>(0, running.size() - 1)(random)];
        if (kill(pid, SIGKILL) != 0 || !dead.insert(pid).second) continue;
        if (++deaths % 50 != 0) continue;
        // None is blank: each shows what is stored, though the extension has no peace.
        EXPECT_TRUE(eventually([&] { return desktop.allSeen(); })) << deaths;
        EXPECT_EQ(kill(host, 0), 0);
    }
    EXPECT_NE(desktop.log().find("the widget extension died (signal 9, Killed)"), std::string::npos);

    // Left in peace, it brings new timelines again.
    auto snapshot = shared::WidgetSnapshot::sample();
    snapshot.clips[0].text = "em paz";
    snapshot.save(HomeLookup::fixed(desktop.folder()));
    const auto clipboard = eleven()[7];
    EXPECT_TRUE(eventually([&] {
        return ui::outline(desktop.entry(clipboard)->view).find("em paz") != std::string::npos;
    })) << desktop.log();
    EXPECT_TRUE(eventually([&] { return desktop.allSeen(); }));
    EXPECT_EQ(desktop.widgets(), eleven());
    EXPECT_TRUE(desktop.stop());
}

TEST_F(Deaths, OfTheHostTwoHundredTimesLoseNothingThatWasKept) {
    desktop.place(eleven());
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    desktop.process().kill(SIGKILL);
    desktop.process().wait();

    // One widget goes to and fro between two places of this display, so that there is something to be
    // half-written.
    const auto fans = eleven()[4];
    for (int i = 0; i < 200; ++i) {
        desktop.launch();
        moment(120);
        // Whether the host is up yet to hear this is part of the chance.
        const std::int64_t row = i % 2 == 0 ? 3 : 0;
        for (int calls = 0; calls < i % 4; ++calls)
            static_cast<void>(desktop.call("move", {fans.id, "", 6, row}));
        moment(60);
        desktop.process().kill(SIGKILL);
        desktop.process().wait();

        auto layout = host::DesktopLayoutStore(desktop.folder() / "config/zelto").load();
        ASSERT_TRUE(layout) << layout.fault().text();
        ASSERT_EQ(layout->widgets.size(), 11U);
        auto& moved = layout->widgets[4];
        EXPECT_TRUE(moved.row == 0 || moved.row == 3);
        moved.row = fans.row;
        ASSERT_EQ(layout->widgets, eleven());
        for (const auto& each : eleven())
            ASSERT_TRUE(host::EntryStore(desktop.folder() / "cache/zelto/widgets").load(each.look()))
                << each.kind;
    }
    // The window manager may have kept windows of the dead, whose numbers the next host's would have.
    display.replace();
    desktop.start({"--extension", "/bin/false"});
    EXPECT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
}

TEST_F(Deaths, OfThePictureProcessTwoHundredTimesCostPicturesAndNothingElse) {
    auto snapshot = shared::WidgetSnapshot::sample();
    const auto image = desktop.folder() / "image.png";
    snapshot.clips[0].imagePath = image;
    snapshot.save(HomeLookup::fixed(desktop.folder()));
    const std::string large = png(1500, 1500, 0xFF336699);
    ASSERT_TRUE(writeFileAtomically(image, large));
    const auto clipboard = widget("ZeltoClipboard", widgetkit::WidgetFamily::systemMedium, 0, 0);
    desktop.place({clipboard});
    desktop.start({"--restart-pause", "0.001"});
    const auto hasPicture = [&] {
        const auto shown = desktop.entry(clipboard);
        return shown && ui::outline(shown->view).find("Image width=66") != std::string::npos;
    };
    ASSERT_TRUE(eventually(hasPicture)) << desktop.log();

    for (int deaths = 0, rounds = 0; deaths < 200; ++rounds) {
        ASSERT_LT(rounds, 20'000) << desktop.log();
        // Another file each time, or it would not be decoded again.
        ASSERT_TRUE(writeFileAtomically(image, large, {.durability = Durability::processDeath}));
        ASSERT_TRUE(desktop.call("reload", {""}));
        moment(600);
        std::vector<pid_t> openers;
        for (const pid_t extension : extensions())
            for (const pid_t child : childrenOf(extension)) openers.push_back(child);
        if (openers.empty()) continue;
        // The opener or one of its decoders.
        std::vector<pid_t> all = openers;
        for (const pid_t opener : openers)
            for (const pid_t decoder : childrenOf(opener)) all.push_back(decoder);
        const pid_t pid = all[std::uniform_int_distribution<std::size_t>(0, all.size() - 1)(random)];
        if (kill(pid, SIGKILL) != 0) continue;
        ++deaths;
        ASSERT_TRUE(desktop.entry(clipboard)) << desktop.log();
        // There are pictures again from the extension's next start on.
        if (deaths % 10 == 0)
            for (const pid_t extension : extensions()) kill(extension, SIGKILL);
    }
    for (const pid_t extension : extensions()) kill(extension, SIGKILL);
    ASSERT_TRUE(writeFileAtomically(image, large));
    ASSERT_TRUE(desktop.call("reload", {""}));
    EXPECT_TRUE(eventually(hasPicture)) << desktop.log();
    EXPECT_TRUE(desktop.stop());
}

}  // namespace
}  // namespace zelto::test
