#include <gtest/gtest.h>

#include "tests/support/Samples.hpp"
#include "widget/Widgets/CalendarWidget.hpp"

namespace zelto::test {

using namespace shared;
using namespace texts;
using namespace widget;
using namespace widgetkit;
namespace {

struct EventRow {
    Formatting formatting{{"pt_BR", "America/Sao_Paulo"}};
    Date now = wednesday;
    Date realNow = wednesday;

    std::string operator()(
        const char* start, const char* end = "2026-12-31T00:00:00-03:00", bool allDay = false) const {
        WidgetSnapshot::Event event;
        event.start = *parseISO8601(start);
        event.end = *parseISO8601(end);
        event.allDay = allDay;
        const EnvironmentValues environment{medium, formatting, [this] { return realNow; }};
        return EventLine{event, now, environment}.timeText();
    }
};

TEST(EventTimeText, TellsWhenItIs) {
    EventRow text;
    EXPECT_EQ(text("2026-03-11T16:30:00-03:00"), "16:30");
    EXPECT_EQ(text("2026-03-12T09:30:00-03:00"), "Amanhã · 09:30");
    EXPECT_EQ(text("2026-03-13T09:30:00-03:00"), "sex., 13 · 09:30");
    EXPECT_EQ(text("2026-03-11T14:05:00-03:00", "2026-03-11T15:00:00-03:00"), "Agora · até 15:00");
    EXPECT_EQ(text("2026-03-11T10:00:00-03:00", "2026-03-11T15:00:00-03:00"), "Agora · até 15:00");
    EXPECT_EQ(text("2026-03-10T10:00:00-03:00", "2026-03-11T15:00:00-03:00", true), "Dia todo");
}

TEST(EventTimeText, TellsTomorrowFromTheRealDate) {
    EventRow text;
    text.realNow = wednesday + 86400;
    EXPECT_EQ(text("2026-03-12T09:30:00-03:00"), "qui., 12 · 09:30");
    EXPECT_EQ(text("2026-03-13T09:30:00-03:00"), "Amanhã · 09:30");
    EXPECT_EQ(text("2026-03-11T16:30:00-03:00"), "16:30");
}

TEST(CalendarWidget, AsksForAccessWithoutASnapshotOrWithoutPermission) {
    const char* note = "Abra a aba Agenda do Zelto e permita o acesso.";
    EXPECT_TRUE(shows(outlineOf("ZeltoCalendar", medium, without()), note));
    const std::string denied =
        outlineOf("ZeltoCalendar", large, sample([](auto& s) { s.calendarAccess = false; }));
    EXPECT_TRUE(shows(denied, note));
    EXPECT_FALSE(shows(denied, "Almoço"));
    EXPECT_EQ(texts(outlineOf("ZeltoCalendar", medium, without()))[0], "11");
    EXPECT_EQ(texts(outlineOf("ZeltoCalendar", medium, without()))[1], "Março quarta-feira");
}

TEST(CalendarWidget, DropsEventsThatHaveEnded) {
    const Look ended = sample([](auto& s) {
        for (auto& event : s.events) event.end = wednesday;
    });
    EXPECT_TRUE(shows(outlineOf("ZeltoCalendar", medium, ended), "Nenhum compromisso nos próximos 7 dias."));
    const Look running = sample([](auto& s) {
        for (auto& event : s.events) event.end = wednesday + 0.5;
    });
    EXPECT_EQ(count(outlineOf("ZeltoCalendar", medium, running), "roundedRectangle(2)"), 3);
    EXPECT_TRUE(shows(
        outlineOf("ZeltoCalendar", medium, sample([](auto&) {}, 1500)), "Daily do time"));  // however old
}

TEST(CalendarWidget, ShowsTheFirstThreeOrSevenInPublishedOrder) {
    const Look ten = sample([](auto& s) {
        s.events.clear();
        for (int i = 10; i > 0; --i) {
            WidgetSnapshot::Event event;
            event.title = "E" + std::to_string(i);
            event.start = wednesday + 60.0 * i;
            event.end = event.start + 60;
            s.events.push_back(event);
        }
    });
    EXPECT_EQ(count(outlineOf("ZeltoCalendar", medium, ten), "Text \"E"), 3);
    const std::string rows = outlineOf("ZeltoCalendar", large, ten);
    EXPECT_EQ(count(rows, "Text \"E"), 7);
    EXPECT_LT(rows.find("\"E10\""), rows.find("\"E9\""));
    EXPECT_TRUE(shows(rows, "E4"));
    EXPECT_FALSE(shows(rows, "E3"));
}

TEST(CalendarWidget, EncodesMeetingLinks) {
    const Look look = sample([](auto& s) { s.events[0].meetingURL = URL::parse("https://a.b/c-d?e=f g"); });
    EXPECT_TRUE(
        has(outlineOf("ZeltoCalendar", medium, look),
            ".link(\"zelto://join?url=https%3A%2F%2Fa%2Eb%2Fc%2Dd%3Fe%3Df%2520g\")"));
    EXPECT_EQ(count(outlineOf("ZeltoCalendar", medium, look), "Text \"Entrar\""), 2);
}

TEST(CalendarWidget, TakesTheFallbackForAColourThatIsNone) {
    const Look look = sample([](auto& s) { s.events[0].colorHex = "verde"; });
    EXPECT_TRUE(has(outlineOf("ZeltoCalendar", medium, look), "fill(#4F8DF7) .frame(width=3 height=26)"));
}

}  // namespace
}  // namespace zelto::test
