// The clocks of every zone, beside what `date` says.

#include <cmath>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "foundation/Files.hpp"
#include "foundation/ISO8601.hpp"
#include "platform/texts/TimeZoneRule.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "texts/Environment.hpp"
#include "texts/Formatting.hpp"
#include "texts/TimeZone.hpp"

namespace zelto::test {

using namespace texts;
namespace {

namespace fs = std::filesystem;

/// 200 instants from 1990 to 2099: every half year with some minutes off, so that no zone's changes are met
/// in step.
std::vector<Date> instants() {
    std::vector<Date> out;
    const double begin = parseISO8601("1990-01-01T00:00:00Z")->sinceReference;
    const double end = parseISO8601("2099-12-31T00:00:00Z")->sinceReference;
    for (int i = 0; i < 200; ++i) out.push_back({std::floor(begin + (end - begin) / 199 * i) + 61 * i});
    return out;
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    for (std::size_t begin = 0, end = 0; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1)
        out.push_back(text.substr(begin, end - begin));
    return out;
}

/// What `date` prints of the instants under a value of TZ: time, weekday, day, and those of the next day.
std::vector<std::string> byDate(const std::string& zone, const std::vector<Date>& dates) {
    const TemporaryFolder folder;
    std::string input;
    for (const Date date : dates) input += "@" + std::to_string(std::llround(date.since1970())) + "\n";
    const auto file = folder.write("dates", input);
    const auto done =
        run({"date", "-f", file.string(), "+%H:%M %u %-d %-H"},
            "",
            {"PATH=/usr/bin:/bin", "LC_ALL=C", "TZ=" + zone});
    EXPECT_EQ(done.status, 0) << done.errors;
    return lines(done.output);
}

/// The same by the texts that the widgets show.
std::string byFormatting(const Formatting& formatting, const std::string& zone, Date date) {
    static const std::map<std::string, int> weekdays{
        {"seg.", 1}, {"ter.", 2}, {"qua.", 3}, {"qui.", 4}, {"sex.", 5}, {"sáb.", 6}, {"dom.", 7}};
    const std::string day = formatting.weekdayAndDay(date);
    const auto comma = day.find(", ");
    const auto weekday = weekdays.find(day.substr(0, comma));
    EXPECT_NE(weekday, weekdays.end()) << day;
    EXPECT_EQ(day.substr(comma + 2), std::to_string(formatting.dayOfMonth(date)));
    EXPECT_EQ(formatting.shortTime(date), formatting.shortTime(date, zone));
    return formatting.shortTime(date, zone) + " " + std::to_string(weekday->second) + " " +
           std::to_string(formatting.dayOfMonth(date)) + " " +
           std::to_string(formatting.hour(date, zone).value_or(-1));
}

void agrees(const std::string& variable, const std::string& identifier) {
    const auto dates = instants();
    const auto expected = byDate(variable, dates);
    ASSERT_EQ(expected.size(), dates.size()) << variable;
    const Formatting formatting({"pt_BR", identifier});
    std::size_t wrong = 0;
    std::string first;
    for (std::size_t i = 0; i < dates.size(); ++i) {
        const std::string own = byFormatting(formatting, identifier, dates[i]);
        if (own == expected[i]) continue;
        if (wrong++ == 0) first = iso8601(dates[i]) + ": " + own + ", not " + expected[i];
    }
    EXPECT_EQ(wrong, 0U) << variable << ": " << first;
}

TEST(TimeZones, OfTheSystemsTableAgreeWithDate) {
    std::set<std::string> names;
    for (const std::string& line : lines(readFile("/usr/share/zoneinfo/zone.tab").value())) {
        if (line.starts_with('#')) continue;
        const auto begin = line.find('\t', line.find('\t') + 1) + 1;
        names.insert(line.substr(begin, line.find('\t', begin) - begin));
    }
    EXPECT_GT(names.size(), 400U);
    for (const std::string& name : names) {
        ASSERT_TRUE(isKnownTimeZone(name)) << name;
        EXPECT_EQ(identifierOf({.variable = name}), name);
        agrees(name, name);
    }
}

TEST(TimeZones, ByPathAndByRuleAgreeWithDate) {
    const TemporaryFolder folder;
    const auto copy = folder.write("clock", readFile("/usr/share/zoneinfo/Pacific/Chatham").value());
    const std::vector<std::pair<std::string, std::string>> rows{
        {"/usr/share/zoneinfo/America/Sao_Paulo", "America/Sao_Paulo"},
        {":America/Sao_Paulo", "America/Sao_Paulo"},
        {copy.string(), copy.string()},
        {"<-03>3", "Etc/GMT+3"},
        {"BRT3", "Etc/GMT+3"},
        {"XYZ-14", "Etc/GMT-14"},
        {"UTC0", "Etc/GMT"},
        {"NPT-5:45", "NPT-5:45"},
        {"EST5EDT,M3.2.0,M11.1.0", "EST5EDT,M3.2.0,M11.1.0"},
        {"EST5EDT", "EST5EDT"},
        {"CST6CDT5,M4.1.0/3,M10.5.0", "CST6CDT5,M4.1.0/3,M10.5.0"},
        {"AEST-10AEDT,M10.1.0,M4.1.0/3", "AEST-10AEDT,M10.1.0,M4.1.0/3"},
        {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0"},
        {"AAA3BBB,J60/2,J300/2", "AAA3BBB,J60/2,J300/2"},
        {"AAA3BBB,59/2,299/2", "AAA3BBB,59/2,299/2"},
        {"IST-1GMT0,M10.5.0,M3.5.0/1", "IST-1GMT0,M10.5.0,M3.5.0/1"},
        {"", "UTC"},
        {"Mars/Olympus", "UTC"},
        {"/no/such/file", "UTC"},
        {"posix/America/Sao_Paulo", "America/Sao_Paulo"}};
    for (const auto& [variable, identifier] : rows) {
        EXPECT_EQ(identifierOf({.variable = variable}), identifier) << variable;
        ASSERT_TRUE(TimeZone::find(identifier)) << variable;
        agrees(variable, identifier);
    }
}

TEST(TimeZones, AreKnownByTheirFilesInTheSystemsFolder) {
    for (const char* known :
         {"America/Sao_Paulo", "UTC", "Asia/Kathmandu", "Etc/GMT+3", "America/Ciudad_Juarez"})
        EXPECT_TRUE(isKnownTimeZone(known)) << known;
    // Whether a rule with such a name was looked up before makes no difference.
    ASSERT_TRUE(TimeZone::find("BRT3"));
    for (const char* unknown :
         {"",
          "/",
          "Mars/Olympus",
          "GMT+25:00",
          "Etc/Unknown",
          "america/sao_paulo",
          "America",
          "zone.tab",
          "tzdata.zi",
          "localtime",
          "posixrules",
          "posix/America/Sao_Paulo",
          "right/America/Sao_Paulo",
          "BRT3",
          "../zoneinfo/UTC",
          "America//Sao_Paulo",
          "/usr/share/zoneinfo/UTC",
          "UTC/",
          "./UTC"})
        EXPECT_FALSE(isKnownTimeZone(unknown)) << unknown;
}

TEST(TimeZones, OfTheMachineAreToldByItsFiles) {
    const TemporaryFolder folder;
    const auto setting = [&](const char* file) {
        return TimeZoneSetting{
            .variable = {}, .localTime = folder.path() / file, .nameFile = folder.path() / "timezone"};
    };
    fs::create_symlink("/usr/share/zoneinfo/America/Bahia", folder.path() / "link");
    fs::create_symlink("link", folder.path() / "second");
    fs::create_symlink("/no/such/zone", folder.path() / "broken");
    folder.write("copy", readFile("/usr/share/zoneinfo/Asia/Kathmandu").value());
    EXPECT_EQ(identifierOf(setting("link")), "America/Bahia");
    EXPECT_EQ(identifierOf(setting("second")), "America/Bahia");
    EXPECT_EQ(identifierOf(setting("broken")), "UTC");
    EXPECT_EQ(identifierOf(setting("missing")), "UTC");
    EXPECT_EQ(identifierOf(setting("copy")), (folder.path() / "copy").string());
    folder.write("timezone", "Asia/Kathmandu\n");
    EXPECT_EQ(identifierOf(setting("copy")), "Asia/Kathmandu");
    folder.write("timezone", "Asia/Tokyo\n");
    EXPECT_EQ(identifierOf(setting("copy")), (folder.path() / "copy").string());
}

TEST(TimeZones, GoFromWallClocksToInstants) {
    const TimeZone lisbon = TimeZone::find("Europe/Lisbon").value();
    const auto wall = [](const char* text) { return parseISO8601(text)->sinceReference; };
    // An hour that clocks skip, and one that they show twice.
    EXPECT_EQ(lisbon.instant(wall("2026-03-29T01:30:00Z")), *parseISO8601("2026-03-29T01:30:00Z"));
    EXPECT_EQ(lisbon.instant(wall("2026-10-25T01:30:00Z")), *parseISO8601("2026-10-25T00:30:00Z"));
    EXPECT_EQ(lisbon.instant(wall("2026-07-01T12:00:00Z")), *parseISO8601("2026-07-01T11:00:00Z"));
    EXPECT_EQ(lisbon.wallClock(*parseISO8601("2026-07-01T11:00:00.25Z")), wall("2026-07-01T12:00:00.25Z"));
    // Beyond the ends of all clocks they stand still.
    EXPECT_EQ(lisbon.wallClock({1e300}), lisbon.wallClock({Date::latest}));
    EXPECT_EQ(lisbon.wallClock({-1e300}), lisbon.wallClock({Date::earliest}));
    EXPECT_EQ(TimeZone::utc().wallClock({12.5}), 12.5);
}

TEST(NextDay, IsTheNextOneThatTheCalendarHas) {
    // Samoa had no 30 December 2011.
    const Formatting samoa({"pt_BR", "Pacific/Apia"});
    const Date late = *parseISO8601("2011-12-29T20:00:00-10:00");
    EXPECT_EQ(samoa.dayOfMonth(late), 29);
    EXPECT_EQ(samoa.dayOfMonth(samoa.nextDay(late)), 31);
    EXPECT_TRUE(samoa.isSameDay(samoa.nextDay(late), late + 86400));
}

TEST(TimeZoneRule, ReadsWhatTheVariableMayHold) {
    struct Row {
        const char* text;
        std::optional<int> standard;  // seconds east of UTC; absent for no rule
        std::optional<int> daylight = {};
    };
    for (const auto& [text, standard, daylight] : std::initializer_list<Row>{
             {"BRT3", -10800},
             {"<-03>3", -10800},
             {"<+1245>-12:45:30", 45930},
             {"EST+5EDT", -18000, -14400},
             {"EST5EDT4,J60/2,300", -18000, -14400},
             {"EST5EDT3:30,M3.2.0/-1,M11.1.0/167:59:59", -18000, -12600},
             {"EST5EDT4,", -18000, -14400},
             {"BR3", {}},
             {"<-03>", {}},
             {"<-033", {}},
             {"BRT", {}},
             {"BRT25", {}},
             {"BRT3:60", {}},
             {"BRT3:", {}},
             {"BRT3x", {}},
             {"BRT3,M3.2.0,M11.1.0", {}},
             {"EST5EDT4;M3.2.0,M11.1.0", {}},
             {"EST5EDT4,M3.2.0", {}},
             {"EST5EDT4,M3.2.0,M11.1.0 ", {}},
             {"EST5EDT4,M13.2.0,M11.1.0", {}},
             {"EST5EDT4,J0,J300", {}},
             {"EST5EDT4,M3.2.0/168,M11.1.0", {}},
             {"", {}}}) {
        const auto rule = TimeZoneRule::parse(text);
        ASSERT_EQ(rule.has_value(), standard.has_value()) << text;
        if (!rule) continue;
        EXPECT_EQ(rule->standard, standard) << text;
        ASSERT_EQ(rule->daylight.has_value(), daylight.has_value()) << text;
        EXPECT_EQ(daylight ? std::optional(rule->daylight->offset) : std::nullopt, daylight) << text;
    }
}

}  // namespace
}  // namespace zelto::test
