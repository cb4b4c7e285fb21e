#include <gtest/gtest.h>

#include "tests/support/Samples.hpp"
#include "widget/Widgets/WorldClockWidget.hpp"

namespace zelto::test {

using namespace texts;
using namespace widget;
using namespace widgetkit;
namespace {

TEST(WorldClockWidget, PutsTheLocalZoneFirstAndCutsTheList) {
    const Look five = sample([](auto& s) {
        s.clockZones = {"Asia/Tokyo", "Europe/Lisbon", "America/New_York", "UTC", "Asia/Kolkata"};
    });
    EXPECT_EQ(
        texts(outlineOf("ZeltoWorldClock", small, five)),
        (std::vector<std::string>{
            "Relógio mundial", "🇧🇷", "Sao Paulo", "14:05", "🇯🇵", "Tokyo", "02:05", "🇵🇹", "Lisbon", "17:05"}));
    EXPECT_EQ(count(outlineOf("ZeltoWorldClock", medium, five), "#FFFFFF12"), 4);
    EXPECT_EQ(count(outlineOf("ZeltoWorldClock", medium, without()), "#FFFFFF12"), 1);
    EXPECT_EQ(count(outlineOf("ZeltoWorldClock", small, without()), "digits=monospaced"), 1);
}

TEST(WorldClockWidget, ListsAZoneTwiceThatWasChosenTwice) {
    const Look twice = sample([](auto& s) { s.clockZones = {"America/Sao_Paulo"}; });
    EXPECT_EQ(count(outlineOf("ZeltoWorldClock", small, twice), "Text \"Sao Paulo\""), 2);
}

TEST(WorldClockWidget, ShowsUnknownZonesInLocalTimeWithoutAFlag) {
    const Look mars = sample([](auto& s) { s.clockZones = {"Mars/Olympus"}; });
    EXPECT_EQ(
        texts(outlineOf("ZeltoWorldClock", small, mars)),
        (std::vector<std::string>{"Relógio mundial", "🇧🇷", "Sao Paulo", "14:05", "Olympus", "14:05"}));
}

TEST(WorldClockWidget, NamesCities) {
    for (const auto& [zone, city] : std::vector<std::pair<const char*, const char*>>{
             {"America/Sao_Paulo", "Sao Paulo"},
             {"America/Argentina/Buenos_Aires", "Buenos Aires"},
             {"Etc/GMT+3", "GMT+3"},
             {"UTC", "UTC"},
             {"", ""},
             {"//", "//"},
             {"A//", "A"}})
        EXPECT_EQ(WorldClockView::cityName(zone), city);
}

TEST(WorldClockWidget, IsDayFromSixToSix) {
    const Formatting formatting({"pt_BR", "America/Sao_Paulo"});
    const EnvironmentValues environment{medium, formatting, [] { return wednesday; }};
    for (const auto& [time, day] : std::vector<std::pair<const char*, bool>>{
             {"05:59", false}, {"06:00", true}, {"17:59", true}, {"18:00", false}, {"00:00", false}}) {
        const ZeltoEntry entry{*parseISO8601(std::string("2026-03-11T") + time + ":00-03:00"), {}, nullptr};
        EXPECT_EQ((WorldClockView{environment, entry}.isDay("America/Sao_Paulo")), day) << time;
    }
}

TEST(WorldClockWidget, CrossesDaylightSavingAndHalfHours) {
    const Formatting formatting({"pt_BR", "Europe/Lisbon"});
    const EnvironmentValues environment{medium, formatting, [] { return wednesday; }};
    const auto at = [&](const char* date, const char* zone) {
        const ZeltoEntry entry{*parseISO8601(date), {}, nullptr};
        return WorldClockView{environment, entry}.time(zone);
    };
    EXPECT_EQ(at("2026-03-29T00:59:00Z", "Europe/Lisbon"), "00:59");
    EXPECT_EQ(at("2026-03-29T01:00:00Z", "Europe/Lisbon"), "02:00");
    EXPECT_EQ(at("2026-03-29T01:00:00Z", "Asia/Kolkata"), "06:30");
    EXPECT_EQ(at("2026-03-29T01:00:00Z", "Asia/Kathmandu"), "06:45");
}

TEST(WorldClock, CallsALocalZoneWithoutANameByWhatStandsForIt) {
    const auto first = [](const char* zone) {
        Look look = sample();
        look.environment.timeZone = zone;
        const auto shown = texts(outlineOf("ZeltoWorldClock", small, look));
        return shown.at(1);
    };
    EXPECT_EQ(first("Etc/GMT+3"), "GMT+3");
    EXPECT_EQ(first("CET-1CEST,M3.5.0,M10.5.0/3"), "CET");
    EXPECT_EQ(first("<-03>3<-02>,M10.3.0/0,M2.3.0/0"), "-03");
    EXPECT_EQ(first("/etc/localtime"), "Hora local");
}

}  // namespace
}  // namespace zelto::test
