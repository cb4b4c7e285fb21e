#include "Widgets/WorldClockWidget.hpp"

#include <algorithm>

#include "Common/Palette.hpp"
#include "Common/WidgetHeader.hpp"
#include "Common/ZeltoConfiguration.hpp"
#include "Widgets/WidgetKinds.hpp"
#include "shared/TimeZoneFlags.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace shared;
using namespace ui;
using namespace widgetkit;

WidgetConfiguration WorldClockWidget::body(const ProviderSources& sources) const {
    return zeltoConfiguration<WorldClockView>(
               WidgetKinds::worldClock, {.minuteByMinute = true, .sources = sources})
        .configurationDisplayName("Zelto · Relógio mundial")
        .description("A hora nas cidades da sua aba Agenda.")
        .supportedFamilies({WidgetFamily::systemSmall, WidgetFamily::systemMedium});
}

std::string WorldClockView::time(const std::string& zone) const {
    return environment.formatting.shortTime(entry.date, zone);
}

bool WorldClockView::isDay(const std::string& zone) const {
    const int hour = environment.formatting.hour(entry.date, zone).value_or(12);
    return hour >= 6 && hour < 18;
}

std::string WorldClockView::cityName(const std::string& zone) {
    const auto end = zone.find_last_not_of('/');
    if (end == std::string::npos) return zone;
    const auto slash = zone.rfind('/', end);
    const auto begin = slash == std::string::npos ? 0 : slash + 1;
    std::string name = zone.substr(begin, end + 1 - begin);
    std::ranges::replace(name, '_', ' ');
    return name;
}

std::string WorldClockView::placeName(const std::string& zone) const {
    if (zone == environment.formatting.environment().timeZone)
        if (const auto name = environment.formatting.namelessZone())
            return name->empty() ? "Hora local" : *name;
    return cityName(zone);
}

std::vector<std::string> WorldClockView::zones() const {
    std::vector<std::string> all{environment.formatting.environment().timeZone};
    if (entry.snapshot) {
        const auto& chosen = entry.snapshot->clockZones;
        all.insert(all.end(), chosen.begin(), chosen.end());
    }
    all.resize(std::min<std::size_t>(all.size(), environment.family == WidgetFamily::systemSmall ? 3 : 4));
    return all;
}

View WorldClockView::body() const {
    return VStack(
               {.alignment = HAlign::leading, .spacing = 6},
               WidgetHeader{.title = "Relógio mundial", .icon = "globe", .color = Palette::accent},
               environment.family == WidgetFamily::systemSmall ? smallContent() : list(mediumContent()))
        .apply(zeltoRoot("open?tab=calendar"));
}

Views WorldClockView::smallContent() const {
    return list(forEach(zones(), [this](const std::string& zone) { return row(zone); }), Spacer(0));
}

View WorldClockView::row(const std::string& zone) const {
    return HStack(
        {.spacing = 5},
        ifPresent(TimeZoneFlags::flag(zone), [](const auto& flag) { return Text(flag).font(14); }),
        Text(placeName(zone)).font(11).lineLimit(1),
        Spacer(),
        Text(time(zone)).monospacedDigits(13, Weight::semibold));
}

View WorldClockView::mediumContent() const {
    return HStack({.spacing = 8}, forEach(zones(), [this](const std::string& zone) { return card(zone); }));
}

View WorldClockView::card(const std::string& zone) const {
    const bool day = isDay(zone);
    return VStack(
               {.spacing = 3},
               HStack(
                   {.spacing = 4},
                   ifPresent(TimeZoneFlags::flag(zone), [](const auto& flag) { return Text(flag).font(16); }),
                   Symbol(day ? "sun.max.fill" : "moon.fill")
                       .font(10)
                       .foreground(day ? Palette::warning : Palette::blue)
                       .accessibilityLabel(day ? "dia" : "noite")),
               Text(time(zone)).monospacedDigits(18, Weight::bold).minimumScale(0.6),
               Text(placeName(zone)).font(10).foreground(secondary).lineLimit(1))
        .padding(Edges::vertical, 6)
        .stretched({.width = true, .height = false})
        .background(RoundedRectangle{10}, Palette::card);
}

}  // namespace zelto::widget
