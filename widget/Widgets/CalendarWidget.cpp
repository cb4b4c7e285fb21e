#include "widget/Widgets/CalendarWidget.hpp"

#include "Common/DeepLink.hpp"
#include "Common/Palette.hpp"
#include "Common/WidgetHeader.hpp"
#include "Common/ZeltoConfiguration.hpp"
#include "Widgets/WidgetKinds.hpp"
#include "texts/Characters.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace texts;
using namespace ui;
using namespace widgetkit;

WidgetConfiguration CalendarWidget::body(const ProviderSources& sources) const {
    return zeltoConfiguration<CalendarWidgetView>(WidgetKinds::calendar, {.sources = sources})
        .configurationDisplayName("Zelto · Agenda")
        .description("Próximos compromissos com botão para entrar na reunião.")
        .supportedFamilies({WidgetFamily::systemMedium, WidgetFamily::systemLarge});
}

View CalendarWidgetView::body() const {
    return VStack({.alignment = HAlign::leading, .spacing = 6}, header(), content())
        .apply(zeltoRoot("open?tab=calendar"));
}

View CalendarWidgetView::header() const {
    return HStack(
        {.alignment = VAlign::firstTextBaseline, .spacing = 6},
        Text(std::to_string(environment.formatting.dayOfMonth(entry.date)))
            .font(24, Weight::bold, Design::rounded)
            .foreground(Palette::accent),
        Text(firstUpperCased(environment.formatting.monthAndWeekday(entry.date)))
            .font(11, Weight::semibold)
            .foreground(Palette::white),
        Spacer(),
        Symbol("calendar").foreground(Palette::accent));
}

Views CalendarWidgetView::content() const {
    const auto note = [](const char* text) {
        return list(Spacer(), Text(text).font(11).foreground(secondary), Spacer());
    };
    if (!entry.snapshot || !entry.snapshot->calendarAccess)
        return note("Abra a aba Agenda do Zelto e permita o acesso.");
    const std::size_t limit = environment.family == WidgetFamily::systemLarge ? 7 : 3;
    Views rows;
    for (const auto& event : entry.snapshot->events) {
        if (!(event.end > entry.date)) continue;
        if (rows.size() == limit) break;
        rows.push_back(EventLine{event, entry.date, environment}.body());
    }
    if (rows.empty()) return note("Nenhum compromisso nos próximos 7 dias.");
    return list(std::move(rows), Spacer(0));
}

std::string EventLine::timeText() const {
    if (event.allDay) return "Dia todo";
    std::string time = environment.formatting.shortTime(event.start);
    if (event.start <= now) return "Agora · até " + environment.formatting.shortTime(event.end);
    if (environment.formatting.isSameDay(event.start, now)) return time;
    // Tomorrow is told from the real current date, not from the entry's.
    if (environment.formatting.isSameDay(event.start, environment.formatting.nextDay(environment.now())))
        return "Amanhã · " + time;
    return environment.formatting.weekdayAndDay(event.start) + " · " + time;
}

std::string EventLine::joinLink(const URL& meeting) {
    return deepLink("join?url=" + percentEncodedAlphanumerics(meeting.text()));
}

View EventLine::body() const {
    return HStack(
        {.spacing = 6},
        Filled(RoundedRectangle{2}, Palette::colorFromHex(event.colorHex)).frame({.width = 3, .height = 26}),
        VStack(
            {.alignment = HAlign::leading, .spacing = 1},
            Text(event.title).font(11, Weight::semibold).lineLimit(1).foreground(Palette::white),
            Text(timeText()).font(9).lineLimit(1).foreground(secondary)),
        Spacer(4),
        ifPresent(event.meetingURL, [this](const URL& meeting) {
            return Text("Entrar")
                .font(9, Weight::bold)
                .foreground(Palette::black)
                .padding(Edges::horizontal, 7)
                .padding(Edges::vertical, 3)
                .background(Capsule{}, Palette::blue)
                .accessibilityLabel("Entrar: " + event.title)
                .link(joinLink(meeting));
        }));
}

}  // namespace zelto::widget
