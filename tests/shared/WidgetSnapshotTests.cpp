#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshot.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "tests/support/Ages.hpp"
#include "tests/support/Snapshots.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/Vectors.hpp"

namespace zelto::test {

using namespace records;
using namespace shared;
namespace {

Result<WidgetSnapshot> decode(const std::string& document) {
    return decodeJSON<WidgetSnapshot>(document);
}
std::string fault(const std::string& document) {
    const auto decoded = decodeJSON<WidgetSnapshot>(document);
    return decoded ? "" : decoded.fault().text();
}

constexpr const char* battery =
    R"("battery":{"percent":80,"charging":true,"pluggedIn":true,"limitEnabled":true,"limit":75,"chargingPaused":false,"adapterDisabled":false},)";

/// A snapshot in which every field differs from its default.
WidgetSnapshot full() {
    WidgetSnapshot s = WidgetSnapshot::sample({794927227.1});
    s.battery->minutesRemaining = -1;
    s.disk = WidgetSnapshot::Disk{.name = "Macintosh HD", .total = 994662584320, .available = 1ULL << 63};
    s.clips[1].pinned = true;
    s.clips[2].text = std::nullopt;
    s.clips[2].imagePath = "/tmp/a b.png";
    s.events[0].allDay = true;
    s.events[0].location = "Sala \"1\"\n\u2028😀";
    s.careItems[0].summary = "Memória/pressão";
    return s;
}

TEST(WidgetSnapshotJSON, LeastDocumentDecodesWithEveryOptionalAbsent) {
    const auto s = decode(leastDocument());
    ASSERT_TRUE(s);
    EXPECT_FALSE(
        s->battery || s->gpu || s->chipTemperature || s->fanMode || s->disk || s->awakeEnd || s->eqOutput ||
        s->careDate);
    EXPECT_EQ(s->cpu, 0.5);
}

TEST(WidgetSnapshotJSON, NullAndMissingBatteryAreTheSame) {
    const auto null = decode(leastDocument(R"("battery":null,)")), missing = decode(leastDocument());
    ASSERT_TRUE(null && missing);
    EXPECT_EQ(encodeJSON(*null), encodeJSON(*missing));
    EXPECT_FALSE(null->battery);
}

/// Of a record and of those in it.
int requiredKeys(const Schema& schema) {
    if (schema.kind == Schema::Kind::optional || schema.kind == Schema::Kind::list)
        return requiredKeys(schema.element());
    int keys = 0;
    for (const Schema::Field& field : schema.fields)
        keys += (field.isOptional ? 0 : 1) + requiredKeys(field.schema());
    return keys;
}

TEST(WidgetSnapshotJSON, AnyMissingRequiredKeyRejectsTheWholeDocument) {
    const auto document = nlohmann::json::parse(*encodeJSON(full()));
    int removed = 0;
    const auto check = [&](const std::string& key, nlohmann::json without, const std::string& place) {
        (void)key;
        EXPECT_EQ(fault(without.dump()), place + ": missing");
        ++removed;
    };
    for (const char* key :
         {"date",
          "cpu",
          "cpuHistory",
          "memory",
          "memoryUsed",
          "memoryTotal",
          "fans",
          "awakeActive",
          "eqEnabled",
          "eqPreset",
          "clips",
          "calendarAccess",
          "events",
          "clockZones",
          "careItems"}) {
        auto without = document;
        without.erase(key);
        check(key, without, key);
    }
    for (const char* key :
         {"percent", "charging", "pluggedIn", "limitEnabled", "limit", "chargingPaused", "adapterDisabled"}) {
        auto without = document;
        without["battery"].erase(key);
        check(key, without, std::string("battery.") + key);
    }
    for (const auto& [list, keys] : std::vector<std::pair<std::string, std::vector<std::string>>>{
             {"fans", {"actual", "minimum", "maximum", "manual"}},
             {"clips", {"id", "date", "pinned"}},
             {"events", {"id", "title", "start", "end", "allDay", "colorHex"}},
             {"careItems", {"title", "level", "summary"}}})
        for (const auto& key : keys) {
            auto without = document;
            without[list].back().erase(key);
            check(key, without, list + "[" + std::to_string(without[list].size() - 1) + "]." + key);
        }
    for (const char* key : {"name", "total", "available"}) {
        auto without = document;
        without["disk"].erase(key);
        check(key, without, std::string("disk.") + key);
    }
    EXPECT_EQ(removed, requiredKeys(schemaOf<WidgetSnapshot>()));
}

TEST(WidgetSnapshotJSON, BatteryWithoutItsOptionalFieldsDecodes) {
    const auto s = decode(leastDocument(battery));
    ASSERT_TRUE(s && s->battery);
    EXPECT_EQ(s->battery->limit, 75);
    EXPECT_FALSE(
        s->battery->health || s->battery->cycles || s->battery->minutesRemaining || s->battery->temperature ||
        s->battery->watts);
}

TEST(WidgetSnapshotJSON, DateZeroIsTheReferenceDate) {
    const auto s = decode(leastDocument());
    EXPECT_EQ(s->date.since1970(), 978307200);
}

TEST(WidgetSnapshotJSON, ANumberThatIsNotFiniteProducesNoDocument) {
    WidgetSnapshot s;
    s.cpu = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(encodeJSON(s));
    s.cpu = 0;
    s.date = {std::numeric_limits<double>::infinity()};
    EXPECT_FALSE(encodeJSON(s));
}

TEST(WidgetSnapshotJSON, RoundTripGivesFieldForFieldTheSame) {
    const WidgetSnapshot before = full();
    const auto text = encodeJSON(before);
    ASSERT_TRUE(text);
    const auto after = decode(*text);
    ASSERT_TRUE(after);
    EXPECT_EQ(encodeJSON(*after), text);  // all fields, by the same table
    // And some by hand, so that a table that forgets a field shows.
    EXPECT_EQ(after->date, before.date);
    EXPECT_EQ(after->cpuHistory, before.cpuHistory);
    EXPECT_EQ(after->battery->minutesRemaining, -1);
    EXPECT_EQ(after->disk->available, 1ULL << 63);
    EXPECT_EQ(after->clips[1].id, before.clips[1].id);
    EXPECT_EQ(after->clips[2].text, std::nullopt);
    EXPECT_EQ(after->clips[2].imagePath, before.clips[2].imagePath);
    EXPECT_EQ(after->events[0].location, before.events[0].location);
    EXPECT_EQ(after->events[2].meetingURL, before.events[2].meetingURL);
    EXPECT_EQ(after->awakeEnd, before.awakeEnd);
    EXPECT_EQ(after->careItems[0].summary, before.careItems[0].summary);
}

TEST(WidgetSnapshotJSON, KeysStandInTableOrderAndAbsentOnesAreLeftOut) {
    WidgetSnapshot s;
    s.date = {1};
    s.eqPreset = "a/b";
    EXPECT_EQ(
        encodeJSON(s),
        R"({"date":1,"cpu":0,"cpuHistory":[],"memory":0,"memoryUsed":0,"memoryTotal":0,"fans":[],"awakeActive":false,)"
        R"("eqEnabled":false,"eqPreset":"a\/b","clips":[],"calendarAccess":false,"events":[],"clockZones":[],"careItems":[]})");
    s.battery = WidgetSnapshot::Battery{};
    EXPECT_TRUE(encodeJSON(s)->starts_with(
        R"({"date":1,"battery":{"percent":0,"charging":false,"pluggedIn":false,"limitEnabled":false,"limit":80,)"));
}

TEST(WidgetSnapshotJSON, UnknownKeysAreIgnored) {
    EXPECT_TRUE(decode(leastDocument(R"("future":{"deep":[1,{"x":null}]},)")));
}

TEST(WidgetSnapshotJSON, BadElementsRejectAllAndAreNamed) {
    auto document = nlohmann::json::parse(*encodeJSON(full()));
    document["events"][2]["meetingURL"] = "";
    EXPECT_EQ(fault(document.dump()), "events[2].meetingURL: not a URL");
    document["clips"][1]["id"] = "nonsense";
    EXPECT_EQ(fault(document.dump()), "clips[1].id: not a UUID");
    EXPECT_EQ(
        fault(leastDocument(R"("fans":[{"actual":1,"minimum":0,"maximum":2,"manual":1}],)")),
        "fans[0].manual: expected true or false, found 1");
}

TEST(WidgetSnapshotDefaults, AreThoseOfTheRecords) {
    const Date before = Date::now();
    const WidgetSnapshot s;
    EXPECT_GE(s.date, before);
    EXPECT_EQ(WidgetSnapshot::Battery{}.limit, 80);
    EXPECT_EQ(WidgetSnapshot::Event{}.colorHex, "#4F8DF7");
    EXPECT_EQ(WidgetSnapshot::CareItem{}.level, "ok");
    EXPECT_GE(WidgetSnapshot::Event{}.start, before);
}

TEST(WidgetSnapshotDefaults, TwoClipsHaveDifferentIdentifiers) {
    EXPECT_NE(WidgetSnapshot::Clip{}.id, WidgetSnapshot::Clip{}.id);
}

// ---- the store ----

struct Store : testing::Test {
    TemporaryFolder home;
    HomeLookup lookup = HomeLookup::fixed(home.path());
};

TEST_F(Store, LivesBelowTheRealHome) {
    EXPECT_EQ(WidgetSnapshot::url(lookup), home.path() / "Library/Application Support/Zelto/widget.json");
    EXPECT_EQ(WidgetSnapshot::folder(lookup), home.path() / "Library/Application Support/Zelto");
    EXPECT_EQ(WidgetSnapshot::realHome(lookup), home.path());
}

TEST_F(Store, LoadIsAbsentWithoutAFile) {
    EXPECT_FALSE(WidgetSnapshot::load(lookup));
}

TEST_F(Store, LoadIsAbsentForEmptyTruncatedAndIncompleteFiles) {
    const std::string good = *encodeJSON(full());
    for (const std::string& bad :
         {std::string(),
          good.substr(0, good.size() / 2),
          good.substr(0, good.size() - 1),
          good + "}",
          std::string("{\"date\":1}"),
          std::string("null")}) {
        home.write("Library/Application Support/Zelto/widget.json", bad);
        EXPECT_FALSE(WidgetSnapshot::load(lookup)) << bad.size();
    }
}

TEST_F(Store, SaveMakesTheWholePath) {
    full().save(lookup);
    EXPECT_TRUE(std::filesystem::is_regular_file(WidgetSnapshot::url(lookup)));
}

mode_t modeOf(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

TEST_F(Store, WhatSaveMakesIsTheOwnersAlone) {
    const mode_t mask = umask(022);
    full().save(lookup);
    EXPECT_EQ(modeOf(WidgetSnapshot::url(lookup)), 0600U);
    EXPECT_EQ(modeOf(WidgetSnapshot::folder(lookup)), 0700U);
    EXPECT_EQ(modeOf(home.path() / "Library"), 0755U);
    EXPECT_EQ(modeOf(home.path() / "Library/Application Support"), 0755U);
    umask(mask);
}

TEST_F(Store, SaveKeepsTheModesOfWhatIsThere) {
    home.write("Library/Application Support/Zelto/widget.json", "{}");
    for (const mode_t mode : {0644U, 0640U, 0600U}) {
        chmod(WidgetSnapshot::url(lookup).c_str(), mode);
        chmod(WidgetSnapshot::folder(lookup).c_str(), 0755);
        full().save(lookup);
        EXPECT_EQ(modeOf(WidgetSnapshot::url(lookup)), mode);
        EXPECT_EQ(modeOf(WidgetSnapshot::folder(lookup)), 0755U);
        EXPECT_TRUE(WidgetSnapshot::load(lookup));
    }
}

TEST_F(Store, SaveRemovesWhatADeathHasLeft) {
    const auto leftover = home.write(
        "Library/Application Support/Zelto/.widget.json.6F9619FF-8B86-D011-B42D-00CF4FC964FF", "{");
    aged(leftover);
    const auto other = home.write("Library/Application Support/Zelto/.widget.json.notes", "");
    full().save(lookup);
    EXPECT_FALSE(std::filesystem::exists(leftover));
    EXPECT_TRUE(std::filesystem::exists(other));
}

TEST_F(Store, AFileOfMoreThanSixteenMegabytesIsNoSnapshot) {
    std::string document = *encodeJSON(full());
    const auto pad = [&](std::size_t size) {
        home.write(
            "Library/Application Support/Zelto/widget.json",
            document + std::string(size - document.size(), ' '));
    };
    pad(WidgetSnapshot::largestDocument);
    EXPECT_TRUE(WidgetSnapshot::load(lookup));
    pad(WidgetSnapshot::largestDocument + 1);
    EXPECT_FALSE(WidgetSnapshot::load(lookup));
    // Nor is what only claims to be large read to find out.
    std::filesystem::resize_file(WidgetSnapshot::url(lookup), std::uintmax_t{200} << 30);
    EXPECT_FALSE(WidgetSnapshot::load(lookup));
}

TEST_F(Store, LoadGivesWhatWasSaved) {
    const WidgetSnapshot saved = full();
    saved.save(lookup);
    const auto loaded = WidgetSnapshot::load(lookup);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(encodeJSON(*loaded), encodeJSON(saved));
}

TEST_F(Store, ASnapshotThatCannotBeWrittenLeavesTheOldFile) {
    full().save(lookup);
    const auto before = readFile(WidgetSnapshot::url(lookup));
    WidgetSnapshot bad;
    bad.cpu = std::numeric_limits<double>::quiet_NaN();
    bad.save(lookup);
    EXPECT_EQ(readFile(WidgetSnapshot::url(lookup)), before);
}

TEST_F(Store, FailuresAreSilent) {
    home.write("Library", "a file where a folder should be");
    full().save(lookup);
    EXPECT_FALSE(WidgetSnapshot::load(lookup));
}

TEST_F(Store, AFolderInPlaceOfTheFileIsNoSnapshot) {
    std::filesystem::create_directories(WidgetSnapshot::url(lookup));
    EXPECT_FALSE(WidgetSnapshot::load(lookup));
}

// ---- the sample ----

TEST(Sample, DiffersBetweenAccessesOnlyInItsDatesAndIdentifiers) {
    const WidgetSnapshot a = WidgetSnapshot::sample({100}), b = WidgetSnapshot::sample({101});
    EXPECT_EQ(b.date - a.date, 1);
    WidgetSnapshot shifted = b;
    shifted.date = a.date;
    shifted.awakeEnd = *b.awakeEnd - 1;
    shifted.careDate = *b.careDate - 1;
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NE(a.clips[i].id, b.clips[i].id);
        shifted.clips[i].id = a.clips[i].id;
        shifted.clips[i].date = a.clips[i].date;
        shifted.events[i].start = b.events[i].start - 1;
        shifted.events[i].end = b.events[i].end - 1;
    }
    EXPECT_EQ(encodeJSON(shifted), encodeJSON(a));
}

TEST(Sample, HasFortyGentleHistoryValues) {
    const auto history = WidgetSnapshot::sample().cpuHistory;
    ASSERT_EQ(history.size(), 40U);
    // To the last digit: the order in which they are computed shows in it.
    std::string written;
    for (const auto& text : vectors("json_double_text").at("sample_cpuHistory"))
        written += (written.empty() ? "" : ",") + text.get<std::string>();
    EXPECT_EQ(encodeJSON(history), "[" + written + "]");
    EXPECT_EQ(history[0], 0.2);
    for (const double value : history) {
        EXPECT_GE(value, 0.08);
        EXPECT_LE(value, 0.32);
    }
}

TEST(Sample, HoldsTheFixedValues) {
    const WidgetSnapshot s = WidgetSnapshot::sample({1000});
    EXPECT_FALSE(s.disk || s.battery->minutesRemaining);
    EXPECT_EQ(s.battery->cycles, 454);
    EXPECT_EQ(s.awakeEnd, Date{3700});
    EXPECT_EQ(s.careDate, Date{-2600});
    EXPECT_EQ(s.events[0].start, Date{2800});
    EXPECT_EQ(s.events[0].end, Date{4600});
    EXPECT_EQ(s.events[1].meetingURL, std::nullopt);
    EXPECT_TRUE(s.events[2].meetingURL);
    EXPECT_EQ(s.events[2].id, "Revisão do projeto");
    EXPECT_EQ(s.eqPreset, "Graves+");
    EXPECT_EQ(s.clips[0].text, "Reunião às 15h com o time");
    EXPECT_EQ(s.careItems[0].level, "attention");
    EXPECT_EQ(s.careItems[1].level, "info");
    EXPECT_EQ(s.clockZones, (std::vector<std::string>{"America/New_York", "Europe/Lisbon", "Asia/Tokyo"}));
}

}  // namespace
}  // namespace zelto::test
