#include <fstream>

#include <gtest/gtest.h>

#include "foundation/Files.hpp"
#include "host/DesktopLayoutStore.hpp"
#include "host/EntryStore.hpp"
#include "host/Folders.hpp"
#include "tests/support/Ages.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "ui/Building.hpp"

namespace zelto::host {
namespace {

using test::TemporaryFolder;

struct Layouts : testing::Test {
    TemporaryFolder folder;

    DesktopLayoutStore store() { return DesktopLayoutStore(folder.path()); }
    std::string loaded(const std::string& document) {
        folder.write("desktop.json", document);
        const auto layout = store().load();
        if (layout) return std::to_string(layout->widgets.size());
        EXPECT_EQ(layout.fault().path, store().file());
        return layout.fault().reason;
    }
};

const PlacedWidget battery{
    .id = "b", .kind = "ZeltoBattery", .family = WidgetFamily::systemSmall, .column = 2, .row = 1};
const PlacedWidget clock_{
    .id = "c", .kind = "ZeltoWorldClock", .family = WidgetFamily::systemMedium, .monitor = "DP-1"};

TEST_F(Layouts, ComeBackAsTheyWereSavedInAFileForPeople) {
    auto store = this->store();
    EXPECT_TRUE(store.load()->widgets.empty());
    EXPECT_TRUE(store.save({{battery, clock_}}));
    EXPECT_EQ(
        readFile(store.file()),
        "{\"widgets\": [\n"
        "  {\"id\":\"b\",\"kind\":\"ZeltoBattery\",\"family\":\"systemSmall\",\"column\":2,\"row\":1},\n"
        "  "
        "{\"id\":\"c\",\"kind\":\"ZeltoWorldClock\",\"family\":\"systemMedium\",\"monitor\":\"DP-1\","
        "\"column\":0,"
        "\"row\":0}\n]}\n");
    EXPECT_EQ(*this->store().load(), (DesktopLayout{{battery, clock_}}));
}

TEST_F(Layouts, AFileThatMakesNoSenseIsReportedAndKeptAside) {
    const std::string one = R"({"id":"a","kind":"K","family":"systemSmall","column":0,"row":0})";
    EXPECT_EQ(loaded("{\"widgets\":[" + one + "]}"), "1");
    EXPECT_EQ(
        loaded("{\"widgets\":[" + one + "," + one + "]}"),
        "widgets[1].id: 'a' is there twice; it is kept as desktop.broken-1.json");
    EXPECT_EQ(
        loaded(R"({"widgets":[{"id":"a","kind":"K","family":"huge","column":0,"row":0}]})"),
        "widgets[0].family: not a widget family; it is kept as desktop.broken-2.json");
    EXPECT_EQ(
        loaded(R"({"widgets":[{"id":"a","kind":"K","family":"systemSmall","column":-1,"row":0}]})"),
        "widgets[0].column: must lie between 0 and 1000; it is kept as desktop.broken-3.json");
    EXPECT_EQ(
        loaded(R"({"widgets":[{"id":"a","kind":"K","family":"systemSmall","column":0,"row":1001}]})"),
        "widgets[0].row: must lie between 0 and 1000; it is kept as desktop.broken-4.json");
    EXPECT_TRUE(loaded("{").ends_with("it is kept as desktop.broken-5.json"));
    EXPECT_EQ(readFile(folder.path() / "desktop.broken-5.json"), "{");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "desktop.json"));
}

TEST_F(Layouts, OfMoreThanAMegabyteCannotBeRead) {
    auto store = this->store();
    EXPECT_TRUE(store.save({{battery}}));
    std::filesystem::resize_file(store.file(), std::uintmax_t{20} << 30);
    EXPECT_FALSE(store.load());
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "desktop.broken-1.json"));
}

TEST_F(Layouts, AFolderInTheFilesPlaceIsKeptAsideToo) {
    std::filesystem::create_directories(folder.path() / "desktop.json");
    auto store = this->store();
    EXPECT_FALSE(store.load());
    EXPECT_TRUE(store.save({{battery}}));
    EXPECT_EQ(*this->store().load(), DesktopLayout{{battery}});
}

TEST_F(Layouts, EditsAreNoticed) {
    auto store = this->store();
    EXPECT_TRUE(store.save({{battery}}));
    EXPECT_FALSE(store.wasEdited());
    EXPECT_TRUE(this->store().save({{clock_}}));
    EXPECT_TRUE(store.wasEdited());
    EXPECT_TRUE(store.load());
    EXPECT_FALSE(store.wasEdited());
}

TEST_F(Layouts, WhatADeathInTheMiddleOfAWriteLeftIsCleared) {
    test::aged(folder.write(".desktop.json.5E5A7C1E-0000-4000-8000-000000000000", "half"));
    folder.write(".desktop.json.mine", "kept");
    EXPECT_TRUE(store().load());
    EXPECT_FALSE(
        std::filesystem::exists(folder.path() / ".desktop.json.5E5A7C1E-0000-4000-8000-000000000000"));
    EXPECT_TRUE(std::filesystem::exists(folder.path() / ".desktop.json.mine"));
}

TEST_F(Layouts, AFileThatCannotBeWrittenIsReported) {
    const auto blocker = folder.write("file", "");
    DesktopLayoutStore store(blocker / "below");
    const auto saved = store.save({{battery}});
    EXPECT_EQ(saved.fault(), (Fault{.path = store.file(), .reason = "cannot be written"}));
}

struct Entries : testing::Test {
    TemporaryFolder folder;
    EntryStore store{folder.path() / "cache/zelto"};
    const ArchivedTimeline timeline{{{Date{5}, ui::Text("olá")}}, Date{300}};
    const std::string line = lineOf(timeline);

    static std::string lineOf(const ArchivedTimeline& timeline) {
        Reply reply{.id = 7};
        reply.timeline = timeline;
        return encodeReply(reply).value();
    }
};

TEST_F(Entries, ComeBackAsTheyWereSaved) {
    EXPECT_EQ(store.load(battery), std::nullopt);
    EXPECT_TRUE(store.save(battery, line));
    EXPECT_EQ(store.load(battery), timeline);
    EXPECT_EQ(
        std::filesystem::status(folder.path() / "cache/zelto").permissions(),
        std::filesystem::perms::owner_all);
}

TEST_F(Entries, AreOfAKindAndAFamily) {
    EXPECT_TRUE(store.save(battery, line));
    auto other = battery;
    other.family = WidgetFamily::systemMedium;
    EXPECT_EQ(store.load(other), std::nullopt);
    other = battery;
    other.kind = "ZeltoFans";
    EXPECT_EQ(store.load(other), std::nullopt);
}

TEST_F(Entries, NamesOfWidgetsStayInTheFolder) {
    auto odd = battery;
    odd.id = "../../Ü";
    EXPECT_TRUE(store.save(odd, line));
    EXPECT_TRUE(std::filesystem::exists(
        folder.path() / "cache/zelto/_2e_2e_2f_2e_2e_2f_c3_9c.ZeltoBattery.systemSmall.json"));
    EXPECT_EQ(store.load(odd), timeline);
}

TEST_F(Entries, AreReadAsAStrangers) {
    EXPECT_TRUE(store.save(battery, line));
    const auto file = folder.path() / "cache/zelto/b.ZeltoBattery.systemSmall.json";
    const auto good = readFile(file).value();
    for (const std::string& bad :
         {std::string(), good.substr(0, good.size() / 2), std::string("{}"), std::string("\xFF")}) {
        std::ofstream(file) << bad;
        EXPECT_EQ(store.load(battery), std::nullopt);
    }
    // Out of bounds, without entries, out of order.
    for (const ArchivedTimeline& bad :
         {ArchivedTimeline{{{Date{5}, ui::Text(std::string(20'000, 'x'))}}, Date{300}},
          ArchivedTimeline{{}, Date{300}},
          ArchivedTimeline{{{Date{5}, ui::Text("")}, {Date{4}, ui::Text("")}}, Date{300}}}) {
        EXPECT_TRUE(store.save(battery, lineOf(bad)));
        EXPECT_EQ(store.load(battery), std::nullopt);
    }
}

TEST_F(Entries, OfMoreThanTwoMegabytesAreNone) {
    EXPECT_TRUE(store.save(battery, line));
    std::filesystem::resize_file(
        folder.path() / "cache/zelto/b.ZeltoBattery.systemSmall.json", std::uintmax_t{20} << 30);
    EXPECT_EQ(store.load(battery), std::nullopt);
    // Nor are they written.
    EXPECT_FALSE(store.save(battery, std::string((std::size_t{2} << 20) + 1, ' ')));
}

TEST_F(Entries, OfWidgetsThatAreGoneAreDeleted) {
    EXPECT_TRUE(store.save(battery, line));
    EXPECT_TRUE(store.save(clock_, line));
    folder.write("cache/zelto/.b.json.5E5A7C1E-0000-4000-8000-000000000000", "half");
    store.keepOnly({clock_});
    EXPECT_EQ(store.load(battery), std::nullopt);
    EXPECT_EQ(store.load(clock_), timeline);
    EXPECT_FALSE(
        std::filesystem::exists(folder.path() / "cache/zelto/.b.json.5E5A7C1E-0000-4000-8000-000000000000"));
}

TEST(Folders, FollowTheEnvironmentIfItIsAbsolute) {
    const auto of = [](std::optional<std::string> config, std::optional<std::string> cache) {
        const auto folders = Folders::of(
            [&](std::string_view name) { return name == "XDG_CONFIG_HOME" ? config : cache; }, "/home/ana");
        return folders.configuration.string() + " " + folders.cache.string();
    };
    EXPECT_EQ(of(std::nullopt, std::nullopt), "/home/ana/.config/zelto /home/ana/.cache/zelto");
    EXPECT_EQ(of("/c", "/k"), "/c/zelto /k/zelto");
    EXPECT_EQ(of("", "relative"), "/home/ana/.config/zelto /home/ana/.cache/zelto");
}

}  // namespace
}  // namespace zelto::host
