#include <limits>
#include <map>

#include <gtest/gtest.h>

#include "foundation/ISO8601.hpp"
#include "tests/support/Vectors.hpp"
#include "texts/Characters.hpp"
#include "texts/Formatting.hpp"

namespace zelto::test {

using namespace texts;
namespace {

TEST(ByteCount, FollowsTheFileStyle) {
    for (const auto& row : vectors("byte_count_file").at("vectors")) {
        const auto n = row.at("n").get<std::int64_t>();
        const auto& tie = row.at("tie_half_away_pt_BR");
        const std::string expected = tie.is_null() ? row.at("pt_BR") : tie;
        EXPECT_EQ(Formatting({"pt_BR", "UTC"}).byteCount(n), expected) << n;
        if (!tie.is_null()) continue;
        EXPECT_EQ(Formatting({"pt_PT", "UTC"}).byteCount(n), row.at("pt_PT").get<std::string>()) << n;
        EXPECT_EQ(Formatting({"en_US", "UTC"}).byteCount(n), row.at("en_US").get<std::string>()) << n;
    }
}

TEST(ByteCount, HoldsAtTheEndsOfItsRange) {
    const Formatting formatting({"pt_BR", "UTC"});
    EXPECT_EQ(formatting.byteCount(std::numeric_limits<std::int64_t>::max()), "9,22 EB");
    EXPECT_EQ(formatting.byteCount(std::numeric_limits<std::int64_t>::min()), "-9,22 EB");
    EXPECT_EQ(formatting.byteCount(-1), "-1 byte");
}

TEST(ShortTime, FollowsLocaleAndZone) {
    const Date date = *parseISO8601("2026-03-11T12:05:00Z");
    EXPECT_EQ(Formatting({"pt_BR", "America/Sao_Paulo"}).shortTime(date), "09:05");
    EXPECT_EQ(Formatting({"pt_PT", "Europe/Lisbon"}).shortTime(date), "12:05");
    EXPECT_EQ(Formatting({"en_US", "America/Sao_Paulo"}).shortTime(date), "9:05\u202FAM");
    EXPECT_EQ(Formatting({"en_GB", "Asia/Kolkata"}).shortTime(date), "17:35");
    EXPECT_EQ(Formatting({"ja_JP", "America/Sao_Paulo"}).shortTime(date), "9:05");
}

TEST(RelativeDate, CountsCalendarBoundariesAndNamesThem) {
    const Date reference = *parseISO8601("2026-03-11T12:00:00-03:00");
    for (const char* locale : {"pt_BR", "pt_PT", "en_US"}) {
        const Formatting formatting({locale, "America/Sao_Paulo"});
        for (const auto& row : vectors("relative_named_wide").at("vectors"))
            EXPECT_EQ(
                formatting.relativeDate(reference + row.at("offset_s").get<double>(), reference),
                row.at(locale).get<std::string>())
                << row.at("what");
    }
}

TEST(RelativeDate, AgreesWithThePlatformsOwnRows) {
    const auto& table = vectors("relative_platform_own");
    const Formatting formatting({"en_US", "GMT"});
    const Date reference{table.at("reference_s_since_2001").get<double>()};
    for (const auto& row : table.at("vectors"))
        EXPECT_EQ(
            formatting.relativeDate({row.at("date_s_since_2001").get<double>()}, reference),
            row.at("text").get<std::string>())
            << row;
}

TEST(Dates, AreArrangedByTheLocale) {
    const Date date = *parseISO8601("2026-03-11T12:00:00-03:00");
    const Formatting brazil({"pt_BR", "America/Sao_Paulo"});
    EXPECT_EQ(brazil.monthAndWeekday(date), "março quarta-feira");
    EXPECT_EQ(brazil.weekdayAndDay(date), "qua., 11");
    EXPECT_EQ(brazil.weekdayAndDay(*parseISO8601("2026-03-14T12:00:00-03:00")), "sáb., 14");
    EXPECT_EQ(brazil.weekdayAndDay(*parseISO8601("2026-03-01T12:00:00-03:00")), "dom., 1");
    EXPECT_EQ(Formatting({"en_US", "America/Sao_Paulo"}).monthAndWeekday(date), "March Wednesday");
    EXPECT_EQ(Formatting({"ja_JP", "America/Sao_Paulo"}).monthAndWeekday(date), "3月 水曜日");
}

TEST(Calendar, BelongsToItsZone) {
    const Formatting brazil({"pt_BR", "America/Sao_Paulo"});
    const Date late = *parseISO8601("2026-03-11T23:30:00-03:00");
    EXPECT_EQ(brazil.dayOfMonth(late), 11);
    EXPECT_EQ(brazil.hour(late, "America/Sao_Paulo"), 23);
    EXPECT_EQ(brazil.hour(late, "Asia/Kathmandu"), 8);
    EXPECT_EQ(brazil.hour(late, "Mars/Olympus"), 23);
    EXPECT_EQ(brazil.hour({std::numeric_limits<double>::infinity()}, "UTC"), std::nullopt);
    EXPECT_TRUE(brazil.isSameDay(late, late - 3600));
    EXPECT_FALSE(brazil.isSameDay(late, late + 3600));
    EXPECT_EQ(brazil.nextDay(late), late + 86400);
    // The day on which clocks go forward has 23 hours.
    const Formatting lisbon({"pt_PT", "Europe/Lisbon"});
    const Date noon = *parseISO8601("2026-03-28T12:00:00Z");
    EXPECT_EQ(lisbon.nextDay(noon), noon + 23 * 3600.0);
}

TEST(Characters, AreWhatAPersonPerceives) {
    EXPECT_EQ(characters("a\r\nb").size(), 3U);
    EXPECT_EQ(characters("\n\r").size(), 2U);
    EXPECT_EQ(characters("e\u0301z").size(), 2U);
    EXPECT_EQ(characters("🇧🇷").size(), 1U);
    EXPECT_EQ(characters("").size(), 0U);
    EXPECT_EQ(upperCased("ßfi"), "SSFI");
    EXPECT_EQ(firstUpperCased("março"), "Março");
    EXPECT_EQ(firstUpperCased("ábril"), "Ábril");
    EXPECT_EQ(firstUpperCased("3月"), "3月");
    EXPECT_EQ(firstUpperCased("a"), "A");
    EXPECT_EQ(firstUpperCased("e\u0301z"), "E\u0301z");
    EXPECT_EQ(firstUpperCased(""), "");
}

TEST(Blank, IsWhatNothingIsSeenOf) {
    for (const char* blank :
         {"", " ", "\t\n\v\f\r", "\u00A0\u2003\u3000", "\u200B\u2060\uFEFF", "\x01\x7F", "\u2028"})
        EXPECT_TRUE(isBlank(blank)) << blank;
    for (const char* text : {"x", " x ", "é", "日", "👍", ".", "\u0301"}) EXPECT_FALSE(isBlank(text)) << text;
}

TEST(NamelessZone, IsARulesAbbreviationOrAFile) {
    const auto of = [](const char* zone) { return Formatting({"pt_BR", zone}).namelessZone(); };
    EXPECT_EQ(of("America/Sao_Paulo"), std::nullopt);
    EXPECT_EQ(of("Etc/GMT+3"), std::nullopt);
    EXPECT_EQ(of("CET-1CEST,M3.5.0,M10.5.0/3"), "CET");
    EXPECT_EQ(of("<+0330>-3:30"), "+0330");
    EXPECT_EQ(of("/etc/localtime"), "");
}

TEST(CharacterPrefix, EndsWhereACharacterDoes) {
    struct Row {
        std::string text;
        std::size_t most, end;
    };
    const std::string family = "👨‍👩‍👧";  // one character of 18 bytes
    for (const auto& [text, most, end] : std::vector<Row>{
             {"abc", 5, 3},
             {"abc", 3, 3},
             {"abc", 2, 2},
             {"abc", 0, 0},
             {"ae\u0301z", 2, 1},  // the accent that would follow belongs to its letter
             {"ae\u0301z", 4, 4},
             {"a\r\nb", 2, 1},
             {"x" + family + "y", 18, 1},
             {"x" + family + "y", 19, 19},
             {family, 4, 4}})  // not even one fits
        EXPECT_EQ(characterPrefix(text, most), end) << text << " " << most;
}

TEST(RelativeDate, HoldsDatesAtTheEndsOfTheClocks) {
    const Formatting formatting({"pt_BR", "America/Sao_Paulo"});
    const Date reference = *parseISO8601("2026-03-11T12:00:00-03:00");
    EXPECT_EQ(formatting.relativeDate({1e16}, reference), "em 7.973 anos");
    EXPECT_EQ(formatting.relativeDate({-1e300}, reference), "há 2.025 anos");
    EXPECT_EQ(formatting.shortTime({1e300}), "20:59");
    EXPECT_EQ(formatting.relativeDate({std::numeric_limits<double>::quiet_NaN()}, reference), "");
}

TEST(StartOfMinute, CutsSecondsOff) {
    EXPECT_EQ(Formatting::startOfMinute({119.9})->sinceReference, 60);
    EXPECT_EQ(Formatting::startOfMinute({120})->sinceReference, 120);
    EXPECT_EQ(Formatting::startOfMinute({-1})->sinceReference, -60);
    EXPECT_FALSE(Formatting::startOfMinute({std::numeric_limits<double>::infinity()}));
}

TEST(Environment, TakesTheFirstLocaleThatSaysSomething) {
    const auto locale = [](std::map<std::string, std::string, std::less<>> variables) {
        return localeOf([variables](std::string_view name) -> std::optional<std::string> {
            const auto found = variables.find(name);
            if (found == variables.end()) return std::nullopt;
            return found->second;
        });
    };
    EXPECT_EQ(locale({{"LANG", "en_GB.UTF-8"}}), "en_GB");
    EXPECT_EQ(locale({{"LANG", "en_GB.UTF-8"}, {"LC_TIME", "de_DE@euro"}}), "de_DE");
    EXPECT_EQ(locale({{"LANG", "en_GB.UTF-8"}, {"LC_ALL", "pt_PT"}}), "pt_PT");
    EXPECT_EQ(locale({{"LANG", "en_GB.UTF-8"}, {"LC_ALL", ""}}), "en_GB");
    EXPECT_EQ(locale({{"LANG", "C.UTF-8"}}), "pt_BR");
    EXPECT_EQ(locale({}), "pt_BR");
}

TEST(Environment, KnowsLocalesByTheirLanguage) {
    for (const std::string known : {"pt_BR", "pt", "en_US", "de_DE_EURO"})
        EXPECT_TRUE(isKnownLocale(known)) << known;
    // Also languages that just fill ICU's buffers, and that are longer than all of them.
    for (std::size_t length : {1U, 4U, 11U, 12U, 13U, 15U, 16U, 17U, 200U, 5000U})
        EXPECT_FALSE(isKnownLocale(std::string(length, 'a'))) << length;
    for (const std::string unknown : {"zz_ZZ", "", "_", "@"}) EXPECT_FALSE(isKnownLocale(unknown)) << unknown;
}

TEST(ISO8601, ReadsOffsetsAndFractions) {
    EXPECT_EQ(parseISO8601("2001-01-01T00:00:00Z")->sinceReference, 0);
    EXPECT_EQ(parseISO8601("2026-01-01T00:00:00Z")->sinceReference, 788918400);
    EXPECT_EQ(parseISO8601("2026-01-01T00:00:00.5+00:00")->sinceReference, 788918400.5);
    EXPECT_EQ(parseISO8601("2025-12-31T21:00-03:00")->sinceReference, 788918400);
    for (const char* bad :
         {"",
          "2026-01-01",
          "2026-02-30T00:00:00Z",
          "2026-01-01T24:00:00Z",
          "2026-01-01T00:00:00",
          "2026-01-01T00:00:00Zx",
          "26-01-01T00:00:00Z"})
        EXPECT_FALSE(parseISO8601(bad)) << bad;
}

TEST(ISO8601, WritesWhatItReads) {
    for (const char* text : {"2026-03-11T17:05:00Z", "2001-01-01T00:00:00Z", "1999-12-31T23:59:59.250Z"})
        EXPECT_EQ(iso8601(*parseISO8601(text)), text);
    EXPECT_EQ(iso8601({1e20}), "1e+20 s since 2001");
}

}  // namespace
}  // namespace zelto::test
