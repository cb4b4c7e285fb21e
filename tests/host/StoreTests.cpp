#include <fstream>

#include <gtest/gtest.h>

#include "host/EntryStore.hpp"
#include "host/Folders.hpp"
#include "host/PlacementStore.hpp"
#include "platform/foundation/Files.hpp"
#include "platform/ui/Building.hpp"
#include "tests/support/Ages.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::host {
namespace {

using test::TemporaryFolder;

struct Placements : testing::Test {
    TemporaryFolder folder;
    std::vector<std::string> log;

    PlacementStore store() {
        return PlacementStore(folder.path(), [this](const std::string& line) { log.push_back(line); });
    }
    std::string loaded(const std::string& document) {
        folder.write("desktop.json", document);
        log.clear();
        const auto widgets = store().load();
        if (widgets) return std::to_string(widgets->size());
        return log.empty() ? "silence" : log.front().substr(log.front().find("json: ") + 6);
    }
};

const PlacedWidget battery{
    .id = "b", .kind = "ZeltoBattery", .family = WidgetFamily::systemSmall, .column = 2, .row = 1};
const PlacedWidget clock_{
    .id = "c", .kind = "ZeltoWorldClock", .family = WidgetFamily::systemMedium, .monitor = "DP-1"};

TEST_F(Placements, ComeBackAsTheyWereSavedInAFileForPeople) {
    auto store = this->store();
    EXPECT_TRUE(store.load()->empty());
    EXPECT_TRUE(store.save({battery, clock_}));
    EXPECT_EQ(
        readFile(store.file()),
        "{\"widgets\": [\n"
        "  {\"id\":\"b\",\"kind\":\"ZeltoBattery\",\"family\":\"systemSmall\",\"column\":2,\"row\":1},\n"
        "  "
        "{\"id\":\"c\",\"kind\":\"ZeltoWorldClock\",\"family\":\"systemMedium\",\"monitor\":\"DP-1\","
        "\"column\":0,"
        "\"row\":0}\n]}\n");
    EXPECT_EQ(this->store().load(), (std::vector{battery, clock_}));
    EXPECT_TRUE(log.empty());
}

TEST_F(Placements, AFileThatMakesNoSenseIsReportedAndKeptAside) {
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

TEST_F(Placements, OfMoreThanAMegabyteCannotBeRead) {
    auto store = this->store();
    EXPECT_TRUE(store.save({battery}));
    std::filesystem::resize_file(store.file(), std::uintmax_t{20} << 30);
    EXPECT_EQ(store.load(), std::nullopt);
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "desktop.broken-1.json"));
}

TEST_F(Placements, AFolderInTheFilesPlaceIsKeptAsideToo) {
    std::filesystem::create_directories(folder.path() / "desktop.json");
    auto store = this->store();
    EXPECT_EQ(store.load(), std::nullopt);
    EXPECT_TRUE(store.save({battery}));
    EXPECT_EQ(this->store().load(), std::vector{battery});
}

TEST_F(Placements, EditsAreNoticed) {
    auto store = this->store();
    store.save({battery});
    EXPECT_FALSE(store.wasEdited());
    this->store().save({clock_});
    EXPECT_TRUE(store.wasEdited());
    store.load();
    EXPECT_FALSE(store.wasEdited());
}

TEST_F(Placements, WhatADeathInTheMiddleOfAWriteLeftIsCleared) {
    test::aged(folder.write(".desktop.json.5E5A7C1E-0000-4000-8000-000000000000", "half"));
    folder.write(".desktop.json.mine", "kept");
    store().load();
    EXPECT_FALSE(
        std::filesystem::exists(folder.path() / ".desktop.json.5E5A7C1E-0000-4000-8000-000000000000"));
    EXPECT_TRUE(std::filesystem::exists(folder.path() / ".desktop.json.mine"));
}

TEST_F(Placements, AFileThatCannotBeWrittenIsReported) {
    const auto blocker = folder.write("file", "");
    PlacementStore store(blocker / "below", [this](const std::string& line) { log.push_back(line); });
    EXPECT_FALSE(store.save({battery}));
    ASSERT_EQ(log.size(), 1U);
    EXPECT_TRUE(log[0].ends_with("desktop.json: cannot be written"));
}

struct Entries : testing::Test {
    TemporaryFolder folder;
    EntryStore store{folder.path() / "cache/zelto"};
    ArchivedTimeline timeline{{{Date{5}, ui::Text("olá")}}, Date{300}};
};

TEST_F(Entries, ComeBackAsTheyWereSaved) {
    EXPECT_EQ(store.load(battery), std::nullopt);
    EXPECT_TRUE(store.save(battery, timeline));
    EXPECT_EQ(store.load(battery), timeline);
    EXPECT_EQ(
        std::filesystem::status(folder.path() / "cache/zelto").permissions(),
        std::filesystem::perms::owner_all);
}

TEST_F(Entries, AreOfAKindAndAFamily) {
    store.save(battery, timeline);
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
    EXPECT_TRUE(store.save(odd, timeline));
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "cache/zelto/_2e_2e_2f_2e_2e_2f_c3_9c.json"));
    EXPECT_EQ(store.load(odd), timeline);
}

TEST_F(Entries, AreReadAsAStrangers) {
    store.save(battery, timeline);
    const auto file = folder.path() / "cache/zelto/b.json";
    const auto good = readFile(file).value();
    for (const std::string& bad :
         {std::string(), good.substr(0, good.size() / 2), std::string("{}"), std::string("\xFF")}) {
        std::ofstream(file) << bad;
        EXPECT_EQ(store.load(battery), std::nullopt);
    }
    timeline.entries[0].view = ui::Text(std::string(20'000, 'x'));
    store.save(battery, timeline);
    EXPECT_EQ(store.load(battery), std::nullopt);
}

TEST_F(Entries, OfMoreThanTwoMegabytesAreNone) {
    store.save(battery, timeline);
    std::filesystem::resize_file(folder.path() / "cache/zelto/b.json", std::uintmax_t{20} << 30);
    EXPECT_EQ(store.load(battery), std::nullopt);
    // Nor are they written.
    timeline.entries.assign(200, {timeline.entries[0].date, ui::Text(std::string(16'000, 'x'))});
    EXPECT_FALSE(store.save(battery, timeline));
}

TEST_F(Entries, OfWidgetsThatAreGoneAreDeleted) {
    store.save(battery, timeline);
    store.save(clock_, timeline);
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
