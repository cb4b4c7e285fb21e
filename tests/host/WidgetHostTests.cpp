#include <algorithm>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "host/WidgetHost.hpp"
#include "tests/host/Hosted.hpp"

namespace zelto::host {

using namespace widgetkit;
namespace {

TEST_F(Hosted, AnAddedWidgetIsPlacedAskedForAndShown) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    EXPECT_EQ(takeSeen(), Seen{"placed Battery 0,0"});
    ASSERT_EQ(asked.size(), 1U);
    const Request& request = asked[0].requests.at(0);
    EXPECT_EQ(request.request, RequestKind::timeline);
    EXPECT_EQ(request.kind, "Battery");
    EXPECT_EQ(request.family, WidgetFamily::systemSmall);
    EXPECT_EQ(request.locale, "pt_BR");
    EXPECT_EQ(request.timeZone, "America/Sao_Paulo");
    answer("80 %");
    EXPECT_EQ(takeSeen(), Seen{"Battery shows 80 %"});
    EXPECT_EQ(wakeAt, now + 300);
}

TEST_F(Hosted, EverythingIsThereAgainAfterAStart) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    answer("80 %");
    add("Clock", WidgetFamily::systemLarge);
    answer("14:05");
    asked.clear();
    make();
    seen.clear();
    host->start();
    auto again = takeSeen();
    std::ranges::sort(again);
    EXPECT_EQ(
        again, (Seen{"Battery shows 80 %", "Clock shows 14:05", "placed Battery 0,0", "placed Clock 1,0"}));
    // New ones are asked for behind them, side by side.
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_EQ(asked[1].requests.size(), 2U);
}

TEST_F(Hosted, AFailureKeepsThePictureAndIsLogged) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    answer("80 %");
    now = now + 300;
    host->wake();
    fail("it died");
    EXPECT_EQ(log, Seen{"Battery, systemSmall: it died"});
    EXPECT_EQ(std::get<ui::node::Text>(host->shown(host->widgets()[0].id)->view.node).text, "80 %");
    EXPECT_EQ(wakeAt, now + Schedule::firstPause);
}

TEST_F(Hosted, ACauseIsLoggedOnceUntilItChanges) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    for (const char* how : {"it died", "it died", "it hangs", "it died"}) {
        fail(how);
        now = *wakeAt;
        host->wake();
    }
    answer("80 %");
    host->reloadAll();
    // Under way, and nothing else to wake up for.
    EXPECT_EQ(wakeAt, std::nullopt);
    asked.clear();
    EXPECT_EQ(
        log,
        (Seen{
            "Battery, systemSmall: it died",
            "Battery, systemSmall: it hangs",
            "Battery, systemSmall: it died"}));
}

TEST_F(Hosted, AnswersThatComeFirstAreShownFirst) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    add("Clock", WidgetFamily::systemSmall);
    asked.clear();
    make();
    seen.clear();
    host->start();
    takeSeen();
    Asked open = std::move(asked.back());
    ASSERT_EQ(open.requests.size(), 2U);
    for (const std::size_t place : {1U, 0U}) {
        Reply reply{.timeline = ArchivedTimeline{{{now, ui::Text("14:05")}}, now + 300}};
        open.completion(only(place, reply));
        EXPECT_EQ(takeSeen(), Seen{*open.requests[place].kind + " shows 14:05"});
    }
}

TEST_F(Hosted, AnAnswerOfTheWrongKindIsAFailure) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    Asked open = std::move(asked.front());
    asked.pop_front();
    Reply reply{};
    reply.entry = ArchivedEntry{now, ui::Text("x")};
    open.completion(only(0, reply));
    EXPECT_EQ(log, Seen{"Battery, systemSmall: an answer without a timeline"});
}

TEST_F(Hosted, AChangeOfZoneAsksForEverythingInTheNewOne) {
    start();
    add("Clock", WidgetFamily::systemSmall);
    answer("14:05");
    environment.timeZone = "Asia/Tokyo";
    host->environmentChanged();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].requests[0].timeZone, "Asia/Tokyo");
    takeSeen();
    answer("02:05");
    EXPECT_EQ(takeSeen(), Seen{"Clock shows 02:05"});
}

TEST_F(Hosted, AnAnswerForAnotherFamilyOrARemovedWidgetIsDropped) {
    start();
    const auto id = add("Battery", WidgetFamily::systemSmall);
    EXPECT_EQ(refusal(host->setFamily(id, WidgetFamily::systemMedium)), "");
    takeSeen();
    answer("small");
    EXPECT_EQ(takeSeen(), Seen{});
    answer("medium");
    EXPECT_EQ(takeSeen(), Seen{"Battery shows medium"});
    EXPECT_TRUE(host->reload(id));
    EXPECT_EQ(refusal(host->remove(id)), "");
    takeSeen();
    answer("late");
    EXPECT_EQ(takeSeen(), Seen{});
    EXPECT_TRUE(host->widgets().empty());
}

TEST_F(Hosted, WidgetsStandBesideEachOther) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    add("Clock", WidgetFamily::systemLarge);
    add("Battery", WidgetFamily::systemSmall);
    // Three tiles are left in the first two rows, none of them two wide.
    const auto wide = add("Battery", WidgetFamily::systemMedium);
    std::vector<Cell> cells;
    for (const PlacedWidget& widget : host->widgets()) cells.push_back(widget.cell());
    EXPECT_EQ(cells, (std::vector<Cell>{{0, 0}, {1, 0}, {3, 0}, {0, 2}}));
    EXPECT_EQ(refusal(host->move(wide, std::nullopt, {2, 0})), "another widget stands there");
    EXPECT_EQ(refusal(host->move(wide, std::nullopt, {2, 5})), "");
    // On another monitor there is room everywhere.
    EXPECT_EQ(refusal(host->move(wide, "DP-2", {2, 0})), "");
    EXPECT_EQ(host->widgets()[3].monitor, "DP-2");
    // A widget for a taken place goes where there is room.
    add("Battery", WidgetFamily::systemSmall, Cell{0, 0});
    EXPECT_EQ(host->widgets()[4].cell(), (Cell{0, 1}));
}

TEST_F(Hosted, AWidgetThatGrowsIntoAnotherMovesAway) {
    start();
    const auto id = add("Battery", WidgetFamily::systemSmall);
    add("Battery", WidgetFamily::systemSmall);
    EXPECT_EQ(refusal(host->setFamily(id, WidgetFamily::systemMedium)), "");
    EXPECT_EQ(host->widgets()[0].cell(), (Cell{2, 0}));
    EXPECT_EQ(
        refusal(host->setFamily(id, WidgetFamily::systemLarge)), "Battery is not offered as systemLarge");
}

TEST_F(Hosted, InvalidChangesAreRefused) {
    start();
    EXPECT_EQ(refusal(host->add("Nothing", WidgetFamily::systemSmall)), "no widget 'Nothing'");
    EXPECT_EQ(
        refusal(host->add("Battery", WidgetFamily::systemLarge)), "Battery is not offered as systemLarge");
    EXPECT_EQ(refusal(host->remove("x")), "no placed widget 'x'");
    EXPECT_EQ(refusal(host->move("x", std::nullopt, {})), "no placed widget 'x'");
    EXPECT_EQ(refusal(host->setFamily("x", WidgetFamily::systemSmall)), "no placed widget 'x'");
    EXPECT_EQ(refusal(host->reload("x")), "no placed widget 'x'");
    EXPECT_EQ(refusal(host->reloadKind("Nothing")), "no widget 'Nothing'");
    EXPECT_EQ(refusal(host->reloadKind("Battery")), "");
}

TEST_F(Hosted, ReloadsOneKindOrAll) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    answer("80 %");
    add("Clock", WidgetFamily::systemSmall);
    answer("14:05");
    EXPECT_EQ(refusal(host->reloadKind("Clock")), "");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].requests.size(), 1U);
    answer("14:06");
    host->reloadAll();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].requests.size(), 2U);
}

TEST_F(Hosted, WhatAPersonWroteInTheFileIsTakenOver) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    answer("80 %");
    auto edited = host->widgets();
    edited[0].column = 3;
    edited.push_back({.id = "mine", .kind = "Clock", .family = WidgetFamily::systemSmall, .row = 1});
    EXPECT_TRUE(DesktopLayoutStore(folder.path() / "config").save({edited}));
    takeSeen();
    add("Battery", WidgetFamily::systemSmall);
    EXPECT_EQ(
        takeSeen(),
        (Seen{"placed Battery 3,0", "placed Clock 0,1", "placed Battery 0,0", "Battery shows 80 %"}));
}

TEST_F(Hosted, ABrokenEditIsKeptAsideAndTheWidgetsStay) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    answer("80 %");
    folder.write("config/desktop.json", "{");
    add("Clock", WidgetFamily::systemSmall);
    EXPECT_EQ(host->widgets().size(), 2U);
    ASSERT_EQ(log.size(), 1U);
    EXPECT_TRUE(log[0].ends_with("it is kept as desktop.broken-1.json"));
    EXPECT_EQ(DesktopLayoutStore(folder.path() / "config").load()->widgets.size(), 2U);
}

TEST_F(Hosted, AnExtensionThatDoesNotSayWhatItOffersIsAskedAgain) {
    // Also when nothing is placed that would ask for anything else.
    host->start();
    fail("it died");
    EXPECT_EQ(log, Seen{"could not list the widgets: it died"});
    EXPECT_EQ(wakeAt, now + 2);
    EXPECT_TRUE(asked.empty());
    now = now + 2;
    host->wake();
    ASSERT_EQ(asked.size(), 1U);
    fail("it died again");
    EXPECT_EQ(wakeAt, now + 4);
    // A reload does not wait.
    host->reloadAll();
    ASSERT_EQ(asked.size(), 1U);
    answer("");
    EXPECT_EQ(host->offers().widgets().size(), 2U);
}

TEST_F(Hosted, ABrokenEditAndARefusedWishLoseNothing) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    answer("80 %");
    folder.write("config/desktop.json", "{");
    EXPECT_FALSE(host->remove("x"));
    EXPECT_EQ(DesktopLayoutStore(folder.path() / "config").load()->widgets.size(), 1U);
}

TEST_F(Hosted, ABrokenFileAtTheStartLeavesTheLastGoodOne) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    answer("80 %");
    const auto placed = host->widgets();
    EXPECT_FALSE(host->widgets().empty());
    for (const char* broken : {"{", ""}) {
        folder.write("config/desktop.json", broken);
        make();
        host->start();
        EXPECT_EQ(host->widgets(), placed);
        EXPECT_FALSE(host->isFirstStart());
        EXPECT_EQ(std::exchange(layoutTroubles, {}), Seen{"broken"});
        EXPECT_TRUE(EntryStore(folder.path() / "cache").load(placed[0].look()));
        EXPECT_EQ(DesktopLayoutStore(folder.path() / "config").load()->widgets, placed);
    }
    // Where nothing is known of one, it is as if it had never run.
    folder.write("config/desktop.json", "{");
    std::filesystem::remove(folder.path() / "config/desktop.last.json");
    make();
    host->start();
    EXPECT_TRUE(host->widgets().empty());
    EXPECT_TRUE(host->isFirstStart());
    EXPECT_EQ(layoutTroubles, Seen{"broken"});
}

TEST_F(Hosted, ARemovalIsUndoneForTenSeconds) {
    start();
    const auto first = add("Battery", WidgetFamily::systemSmall);
    const auto second = add("Clock", WidgetFamily::systemSmall);
    const auto before = host->widgets();
    EXPECT_TRUE(host->remove(first));
    EXPECT_TRUE(host->remove(second));
    EXPECT_EQ(removals, (Seen{first, second}));
    EXPECT_EQ(host->undoRemoval().value(), second);
    EXPECT_EQ(host->undoRemoval(second).fault().text(), "nothing was removed in the last ten seconds");
    EXPECT_EQ(host->undoRemoval(first).value(), first);
    EXPECT_EQ(host->widgets(), before);
    EXPECT_TRUE(host->remove(first));
    // In its place stands another one by now.
    const auto third = add("Battery", WidgetFamily::systemSmall);
    now = now + 10;
    EXPECT_EQ(host->undoRemoval().value(), first);
    EXPECT_EQ(host->widgets().front().cell(), (Cell{2, 0}));
    EXPECT_TRUE(host->remove(third));
    now = now + 10.1;
    EXPECT_FALSE(host->undoRemoval());
}

TEST_F(Hosted, WhatIsWrongWithAPictureIsTold) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    fail("it died");
    EXPECT_EQ(std::exchange(pictureTroubles, {}), Seen{"Battery has no answer"});
    now = now + 2;
    host->wake();
    answer("80 %");
    EXPECT_EQ(std::exchange(pictureTroubles, {}), Seen{"Battery is well"});
    // It is to be replaced after five minutes, and old after ten.
    now = now + 300;
    host->wake();
    fail("it died");
    EXPECT_TRUE(pictureTroubles.empty());
    now = now + 299;
    host->wake();
    fail("it died");
    EXPECT_TRUE(pictureTroubles.empty());
    now = now + 5;
    host->wake();
    EXPECT_EQ(std::exchange(pictureTroubles, {}), Seen{"Battery is old"});
    // It is told again as it grows older.
    now = now + 300;
    host->wake();
    EXPECT_EQ(std::exchange(pictureTroubles, {}), Seen{"Battery is old"});
    answer("81 %");
    EXPECT_EQ(std::exchange(pictureTroubles, {}), Seen{"Battery is well"});
}

TEST_F(Hosted, WhatIsNotOfferedHasNoPicture) {
    folder.write(
        "config/desktop.json",
        R"({"widgets":[{"id":"a","kind":"Frob","family":"systemSmall","column":0,"row":0}]})");
    make();
    host->start();
    answer("");
    fail("no widget 'Frob'");
    EXPECT_EQ(pictureTroubles.back(), "Frob is not offered");
}

TEST_F(Hosted, WhatHasNoRoomIsToldOnce) {
    start();
    add("Battery", WidgetFamily::systemSmall);
    add("Clock", WidgetFamily::systemLarge);
    EXPECT_TRUE(layoutTroubles.empty());
    host->setMonitors({{"DP-1", 1, 1}});
    host->setMonitors({{"DP-1", 1, 2}});
    EXPECT_EQ(layoutTroubles, Seen{"no room"});
    EXPECT_EQ(standing.size(), 1U);
    EXPECT_EQ(refusal(host->add("Clock", WidgetFamily::systemMedium)), "there is no room for it");
    EXPECT_EQ(host->widgets().size(), 2U);
}

TEST_F(Hosted, SettingsAreKeptAndTold) {
    start();
    const DesktopSettings wanted{.locked = true, .scale = 2};
    host->set(wanted);
    EXPECT_EQ(settings, std::vector{wanted});
    EXPECT_EQ(host->settings(), wanted);
    EXPECT_EQ(DesktopLayoutStore(folder.path() / "config").load()->settings, wanted);
    // By a person's hand.
    folder.write("config/desktop.json", R"({"widgets":[],"settings":{"margin":20}})");
    host->takeOverEdits();
    EXPECT_EQ(settings.back(), DesktopSettings{.margin = 20});
}

TEST_F(Hosted, ASettingThatCannotBeIsUndone) {
    add("Battery", WidgetFamily::systemSmall);
    rlimit files{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &files), 0);
    const rlimit none{0, files.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    host->start();
    host->set({.locked = true});
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &files), 0);
    EXPECT_EQ(settings.back(), DesktopSettings{});
    EXPECT_EQ(host->settings(), DesktopSettings{});
    EXPECT_TRUE(log.back().ends_with("it could not be read, and is not written over")) << log.back();
}

TEST_F(Hosted, ADiskThatRefusesIsNamedOnce) {
    start();
    folder.write("config", "no folder");
    const auto id = add("Battery", WidgetFamily::systemSmall);
    EXPECT_TRUE(host->move(id, std::nullopt, {2, 2}));
    EXPECT_TRUE(host->move(id, std::nullopt, {3, 3}));
    EXPECT_EQ(layoutTroubles, Seen{"not saved: cannot be written: Not a directory"});
    EXPECT_EQ(
        std::ranges::count_if(
            log, [](const auto& line) { return line.find("desktop.json") != std::string::npos; }),
        1);
}

TEST_F(Hosted, AKindThatIsNotUTF8IsRefused) {
    host->start();
    EXPECT_EQ(refusal(host->add("\xFF", WidgetFamily::systemSmall)), "a kind that is not UTF-8");
    EXPECT_TRUE(host->widgets().empty());
}

TEST_F(Hosted, TheFirstMonitorIsOneWithAndWithoutItsName) {
    start();
    const auto first = add("Battery", WidgetFamily::systemSmall);
    const auto second = add("Battery", WidgetFamily::systemSmall);
    EXPECT_EQ(refusal(host->move(first, "DP-1", {1, 0})), "another widget stands there");
    EXPECT_EQ(refusal(host->move(first, "DP-1", {2, 0})), "");
    EXPECT_EQ(refusal(host->move(second, std::nullopt, {2, 0})), "another widget stands there");
}

TEST_F(Hosted, AWidgetThatGrowsOverTheEdgeMovesAway) {
    start();
    const auto id = add("Battery", WidgetFamily::systemSmall, Cell{3, 0});
    EXPECT_EQ(refusal(host->setFamily(id, WidgetFamily::systemMedium)), "");
    EXPECT_EQ(host->widgets()[0].cell(), (Cell{0, 0}));
}

TEST_F(Hosted, PreviewsAreTheGallerys) {
    start();
    std::string shown;
    host->previews().ask("Battery", WidgetFamily::systemSmall, [&](const auto& entry) {
        shown = entry ? std::get<ui::node::Text>(entry->view.node).text : "nothing";
    });
    EXPECT_EQ(asked[0].requests[0].preview, true);
    EXPECT_EQ(asked[0].requests[0].request, RequestKind::snapshot);
    answer("look");
    EXPECT_EQ(shown, "look");
    host->previews().ask("Battery", WidgetFamily::systemSmall, [&](const auto& entry) {
        shown = entry ? "something" : "nothing";
    });
    fail("it died");
    EXPECT_EQ(shown, "nothing");
}

TEST_F(Hosted, WhatTheExtensionsConfinementLacksIsToldOnce) {
    host->start();
    Reply reply{.id = 1};
    reply.widgets = offered();
    reply.confinement = Confinement{.lacks = {"landlock"}, .folders = {"/home/user/folder"}};
    asked.front().completion(only(0, reply));
    asked.clear();
    EXPECT_EQ(log, Seen{"the widget extension is not fully confined: this system has no landlock"});
    EXPECT_EQ(host->offers().confinement().folders, std::vector<std::string>{"/home/user/folder"});
    host->reloadAll();
    EXPECT_EQ(log.size(), 1U);
}

TEST_F(Hosted, AChangeIsAnsweredWithWhatTheDiskSaid) {
    std::function<void()> disk;
    onDisk = [&](const std::function<Result<void>()>& work, const std::function<void(Result<void>)>& then) {
        disk = [work, then] { then(work()); };
    };
    make();
    start();
    std::vector<std::string> said;
    const auto note = [&](const Result<void>& saved) {
        said.push_back(saved ? "saved" : saved.fault().reason);
    };
    const auto id = host->add("Battery", WidgetFamily::systemSmall, {}, note).value();
    EXPECT_TRUE(said.empty());
    // What is still being written is not taken for somebody's edit.
    host->takeOverEdits();
    EXPECT_EQ(host->widgets().size(), 1U);
    disk();
    EXPECT_EQ(said, Seen{"saved"});
    std::filesystem::remove_all(folder.path() / "config");
    folder.write("config", "no folder");
    EXPECT_TRUE(host->remove(id, note));
    disk();
    EXPECT_EQ(said, (Seen{"saved", "cannot be written: Not a directory"}));
    // What could not be written is still so on the screen, and is written with what comes next.
    std::filesystem::remove(folder.path() / "config");
    const auto clock = host->add("Clock", WidgetFamily::systemSmall, {}, note).value();
    disk();
    ASSERT_EQ(host->widgets().size(), 1U);
    EXPECT_EQ(host->widgets()[0].id, clock);
    EXPECT_EQ(DesktopLayoutStore(folder.path() / "config").load().value().widgets.size(), 1U);
}

}  // namespace
}  // namespace zelto::host
