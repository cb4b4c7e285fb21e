#include <gtest/gtest.h>
#include <sys/resource.h>

#include "foundation/Files.hpp"
#include "host/DesktopLayoutStore.hpp"
#include "tests/support/Ages.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::host {

using namespace widgetkit;
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

TEST_F(Layouts, HaveSettingsBesideTheWidgets) {
    auto store = this->store();
    const DesktopLayout layout{{battery}, DesktopSettings{.locked = true, .scale = 1.5, .margin = 40}};
    EXPECT_TRUE(store.save(layout));
    EXPECT_NE(
        readFile(store.file())->find("\n],\n\"settings\": {\"locked\":true,\"scale\":1.5,\"margin\":40}}\n"),
        std::string::npos);
    EXPECT_EQ(*store.load(), layout);
    for (const auto& [settings, reason] :
         {std::pair{R"({"scale":0})", "settings.scale: must lie between 0.25 and 8; it is kept as"},
          {R"({"refresh":-1})", "settings.refresh: must lie between 0 and 3600; it is kept as"},
          {R"({"margin":1001})", "settings.margin: must lie between 0 and 1000; it is kept as"}})
        EXPECT_TRUE(loaded(std::string(R"({"widgets":[],"settings":)") + settings + "}").starts_with(reason));
}

TEST_F(Layouts, KeepTheLastGoodOne) {
    EXPECT_EQ(store().lastGood(), std::nullopt);
    EXPECT_TRUE(store().load());
    EXPECT_EQ(store().lastGood(), std::nullopt);
    EXPECT_TRUE(store().save({{battery}}));
    EXPECT_EQ(store().lastGood(), DesktopLayout{{battery}});
    // A person's, too, once it was read.
    folder.write("desktop.json", R"({"widgets":[]})");
    auto store = this->store();
    EXPECT_TRUE(store.load());
    EXPECT_TRUE(store.wasThere());
    folder.write("desktop.json", "{");
    EXPECT_FALSE(store.load());
    EXPECT_EQ(store.lastGood(), DesktopLayout{});
    EXPECT_TRUE(store.load());
    EXPECT_FALSE(store.wasThere());
}

TEST_F(Layouts, OfMoreThanAMegabyteCannotBeRead) {
    auto store = this->store();
    EXPECT_TRUE(store.save({{battery}}));
    std::filesystem::resize_file(store.file(), std::uintmax_t{20} << 30);
    EXPECT_FALSE(store.load());
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "desktop.broken-1.json"));
}

TEST_F(Layouts, ThatCannotBeReadNowStayAndAreNotWrittenOver) {
    EXPECT_TRUE(store().save({{battery}}));
    auto store = this->store();
    rlimit files{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &files), 0);
    const rlimit none{0, files.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const auto refused = store.load();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &files), 0);
    EXPECT_EQ(refused.fault().reason, "it cannot be read now; it stays as it is");
    EXPECT_TRUE(store.isUnread());
    EXPECT_EQ(store.save({}).fault().reason, "it could not be read, and is not written over");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "desktop.broken-1.json"));
    EXPECT_TRUE(store.wasEdited());
    EXPECT_EQ(*store.load(), DesktopLayout{{battery}});
    EXPECT_FALSE(store.isUnread());
    EXPECT_TRUE(store.save({}));
}

TEST_F(Layouts, HoldTwoHundredWidgets) {
    DesktopLayout layout;
    for (std::size_t i = 0; i < mostWidgets; ++i) {
        layout.widgets.push_back(battery);
        layout.widgets.back().id = std::to_string(i);
    }
    EXPECT_TRUE(store().save(layout));
    EXPECT_EQ(*store().load(), layout);
    EXPECT_EQ(
        layout.added("new", "K", widgetkit::WidgetFamily::systemSmall, {}, {{"DP-1", 4, 8}}).fault().text(),
        "there are 200 widgets already");
    layout.widgets.push_back(battery);
    EXPECT_TRUE(store().save(layout));
    EXPECT_TRUE(store().load().fault().reason.starts_with("widgets: there are at most 200; it is kept as"));
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
    EXPECT_EQ(saved.fault(), (Fault{.path = store.file(), .reason = "cannot be written: Not a directory"}));
}

}  // namespace
}  // namespace zelto::host
