#include <gtest/gtest.h>

#include "agent/Settings.hpp"
#include "foundation/Files.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::agent {
namespace {

struct AppSettings : testing::Test {
    test::TemporaryFolder folder;
    SettingsStore store{folder.path()};

    std::string faultOf(const std::string& text) const {
        folder.write("app.json", text);
        const auto settings = store.load();
        return settings ? "none" : settings.fault().reason;
    }
};

TEST_F(AppSettings, AreAsUsualWithoutAFile) {
    const auto settings = store.load();
    ASSERT_TRUE(settings);
    EXPECT_EQ(*settings, Settings());
    EXPECT_TRUE(settings->zones().empty());
    EXPECT_FALSE(settings->awakeEndsAtLock());
    EXPECT_TRUE(settings->awakeEndsOnLowBattery());
}

TEST_F(AppSettings, AreWhatAPersonWrote) {
    folder.write("app.json", R"({"clockZones":["Asia/Tokyo"],"awake":{"endsAtLock":true},"later":1})");
    const auto settings = store.load();
    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->zones(), std::vector<std::string>{"Asia/Tokyo"});
    EXPECT_TRUE(settings->awakeEndsAtLock());
    EXPECT_TRUE(settings->awakeEndsOnLowBattery());
}

TEST_F(AppSettings, ThatAreNoneSayWhere) {
    EXPECT_EQ(
        faultOf(R"({"clockZones":["Asia/Atlantis"]})"),
        "clockZones[0]: 'Asia/Atlantis' is not in the system's zone table");
    EXPECT_EQ(faultOf(R"({"version":2})"), "version: is newer than this program");
    EXPECT_NE(faultOf(R"({"awake":{"endsAtLock":"yes"}})").find("awake.endsAtLock"), std::string::npos);
    EXPECT_NE(faultOf("{"), "none");
}

TEST_F(AppSettings, AreKeptAndWhatWasThereStaysBesideThem) {
    folder.write("app.json", "{\"clockZones\":[\"Asia/Tokyo\"]}");
    Settings settings;
    settings.clockZones = {"Europe/Lisbon"};
    ASSERT_TRUE(store.save(settings));
    EXPECT_EQ(store.load()->zones(), std::vector<std::string>{"Europe/Lisbon"});
    EXPECT_EQ(readFile(folder.path() / "app.json.old"), "{\"clockZones\":[\"Asia/Tokyo\"]}");
    EXPECT_EQ(readFile(folder.path() / "app.json"), "{\"version\":1,\"clockZones\":[\"Europe\\/Lisbon\"]}\n");
}

TEST_F(AppSettings, ThatCannotBeKeptSayWhy) {
    folder.write("file", "");
    const auto saved = SettingsStore(folder.path() / "file").save({});
    ASSERT_FALSE(saved);
    EXPECT_NE(saved.fault().reason.find("cannot be written: "), std::string::npos);
}

TEST(SettingsOptions, ChangeOneSettingEach) {
    Settings settings;
    EXPECT_TRUE(change(settings, "awake-ends-at-lock", "on"));
    EXPECT_TRUE(settings.awakeEndsAtLock());
    EXPECT_TRUE(change(settings, "awake-ends-on-low-battery", "off"));
    EXPECT_FALSE(settings.awakeEndsOnLowBattery());
    EXPECT_TRUE(settings.awakeEndsAtLock());
    EXPECT_EQ(
        change(settings, "awake-ends-at-lock", "maybe").fault().reason, "'maybe' is neither on nor off");
    EXPECT_FALSE(change(settings, "colour", "on"));
}

TEST(Zones, AreCalledByTheirIdentifierOrTheirCity) {
    const std::pair<const char*, const char*> names[] = {
        {"Asia/Tokyo", "Asia/Tokyo"},
        {"asia/tokyo", "Asia/Tokyo"},
        {"tokyo", "Asia/Tokyo"},
        {"New York", "America/New_York"},
        {"sao paulo", "America/Sao_Paulo"},
        {"Buenos_Aires", "America/Argentina/Buenos_Aires"}};
    for (const auto& [name, zone] : names) {
        const auto called = zoneCalled(name);
        ASSERT_TRUE(called) << name << ": " << called.fault().text();
        EXPECT_EQ(*called, zone);
    }
    for (const char* name : {"", "Atlantis", "../../etc/passwd", "posix/Asia/Tokyo", "Tok"})
        EXPECT_EQ(zoneCalled(name).fault().reason, "no time zone is called '" + std::string(name) + "'");
}

}  // namespace
}  // namespace zelto::agent
