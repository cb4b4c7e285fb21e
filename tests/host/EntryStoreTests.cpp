#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/Files.hpp"
#include "host/EntryStore.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "ui/Building.hpp"

namespace zelto::host {

using namespace widgetkit;
namespace {

using test::TemporaryFolder;

const Look battery{"ZeltoBattery", WidgetFamily::systemSmall};
const Look clock_{"ZeltoWorldClock", WidgetFamily::systemMedium};

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

TEST_F(Entries, NamesOfKindsStayInTheFolder) {
    auto odd = battery;
    odd.kind = "../../Ü";
    EXPECT_TRUE(store.save(odd, line));
    EXPECT_TRUE(
        std::filesystem::exists(folder.path() / "cache/zelto/_2e_2e_2f_2e_2e_2f_c3_9c.systemSmall.1.json"));
    EXPECT_EQ(store.load(odd), timeline);
}

TEST_F(Entries, AreReadAsAStrangers) {
    EXPECT_TRUE(store.save(battery, line));
    const auto file = folder.path() / "cache/zelto/ZeltoBattery.systemSmall.1.json";
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
        folder.path() / "cache/zelto/ZeltoBattery.systemSmall.1.json", std::uintmax_t{20} << 30);
    EXPECT_EQ(store.load(battery), std::nullopt);
    // Nor are they written.
    EXPECT_FALSE(store.save(battery, std::string((std::size_t{2} << 20) + 1, ' ')));
}

TEST_F(Entries, AreWrittenBesideTheOnesBefore) {
    const auto file = [this](int number) {
        return folder.path() / ("cache/zelto/ZeltoBattery.systemSmall." + std::to_string(number) + ".json");
    };
    const ArchivedTimeline later{{{Date{6}, ui::Text("depois")}}, Date{400}};
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(store.save(battery, line));
        EXPECT_TRUE(std::filesystem::exists(file(1)));
        EXPECT_FALSE(std::filesystem::exists(file(2)));
        EXPECT_EQ(store.load(battery), timeline);
        EXPECT_TRUE(store.save(battery, lineOf(later)));
        EXPECT_FALSE(std::filesystem::exists(file(1)));
        EXPECT_TRUE(std::filesystem::exists(file(2)));
        EXPECT_EQ(store.load(battery), later);
    }
    // A death on the way: the newer counts, if it is whole, and the next has the other's place.
    const auto newer = std::filesystem::last_write_time(file(2)) + std::chrono::seconds(1);
    for (const std::string& written : {line, line.substr(0, 30), std::string()}) {
        ASSERT_TRUE(writeFileAtomically(file(1), written));
        ASSERT_TRUE(writeFileAtomically(file(2), lineOf(later)));
        std::filesystem::last_write_time(file(1), newer);
        std::filesystem::last_write_time(file(2), newer - std::chrono::seconds(1));
        EXPECT_EQ(store.load(battery), written == line ? timeline : later);
    }
    EXPECT_TRUE(store.save(battery, line));
    EXPECT_EQ(store.load(battery), timeline);
    store.keepOnly({clock_});
    EXPECT_FALSE(std::filesystem::exists(file(1)) || std::filesystem::exists(file(2)));
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

TEST_F(Entries, AreDroppedWhenDrawingThemWasTheEnd) {
    EXPECT_TRUE(store.save(battery, line));
    EXPECT_TRUE(store.save(clock_, line));
    const pid_t child = fork();
    if (child == 0) {
        EntryStore own(folder.path() / "cache/zelto");
        own.dropUnfinished();
        own.whileDrawing(clock_, [] {});
        own.whileDrawing(battery, [] { std::abort(); });
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_NE(status, 0);

    EntryStore next(folder.path() / "cache/zelto");
    EXPECT_EQ(next.load(battery), timeline);
    EXPECT_EQ(next.dropUnfinished(), "ZeltoBattery.systemSmall");
    EXPECT_EQ(next.load(battery), std::nullopt);
    EXPECT_EQ(next.load(clock_), timeline);
    EXPECT_EQ(EntryStore(folder.path() / "cache/zelto").dropUnfinished(), std::nullopt);
}

TEST_F(Entries, KeepTheirMark) {
    store.dropUnfinished();
    store.keepOnly({});
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "cache/zelto/drawing"));
}

TEST_F(Entries, AMarkOfSomethingElseDropsNothing) {
    folder.write("cache/victim", "");
    for (const std::string mark : {"../victim", "..", ".", "/etc/hostname", "nothing"}) {
        std::string page = mark + std::string(1024 - mark.size(), '\0');
        page += page + "\x02\x01" + std::string(2046, '\0');
        folder.write("cache/zelto/drawing", page);
        EXPECT_EQ(EntryStore(folder.path() / "cache/zelto").dropUnfinished(), std::nullopt) << mark;
    }
    folder.write("cache/zelto/drawing", std::string(4096, 'x'));
    EXPECT_EQ(EntryStore(folder.path() / "cache/zelto").dropUnfinished(), std::nullopt);
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "cache/victim"));
}

}  // namespace
}  // namespace zelto::host
