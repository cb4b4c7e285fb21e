#include "Widgets/BatteryWidget.hpp"

#include "Common/Palette.hpp"
#include "Common/Ring.hpp"
#include "Common/Rounding.hpp"
#include "Common/WidgetHeader.hpp"
#include "Common/ZeltoConfiguration.hpp"
#include "Widgets/WidgetKinds.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace shared;
using namespace ui;
using namespace widgetkit;

WidgetConfiguration BatteryWidget::body(const ProviderSources& sources) const {
    return zeltoConfiguration<BatteryView>(WidgetKinds::battery, {.sources = sources})
        .configurationDisplayName("Zelto · Bateria")
        .description("Carga, saúde, ciclos e limite de carga.")
        .supportedFamilies({WidgetFamily::systemSmall, WidgetFamily::systemMedium});
}

std::string BatteryView::statusText(const WidgetSnapshot::Battery* info, const LiveData& live) {
    if (!info) return live.charging ? "Carregando" : "Na bateria";
    if (info->adapterDisabled) return "Usando bateria (limite)";
    if (info->chargingPaused) return "Pausada em " + std::to_string(info->limit) + "%";
    if (live.charging) return "Carregando";  // the live reading is fresher than the snapshot's flag
    if (!info->minutesRemaining) return "Na bateria";
    const std::int64_t minutes = *info->minutesRemaining;
    return std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min restantes";
}

const WidgetSnapshot::Battery* BatteryView::info() const {
    return entry.snapshot && entry.snapshot->battery ? &*entry.snapshot->battery : nullptr;
}

View BatteryView::body() const {
    return content().apply(zeltoRoot("open?tab=battery"));
}

View BatteryView::content() const {
    if (!entry.live.battery) return Text("Este Mac não tem bateria.").font(11).foreground(secondary);
    return environment.family == WidgetFamily::systemSmall ? smallContent() : mediumContent();
}

View BatteryView::smallContent() const {
    const bool charging = entry.live.charging;
    return VStack(
        {.spacing = 6},
        WidgetHeader{
            .title = "Bateria",
            .icon = charging ? "bolt.fill" : "battery.75percent",
            .color = charging ? Palette::warning : Palette::accent},
        ring().body().padding(Edges::horizontal, 12),
        status());
}

View BatteryView::mediumContent() const {
    Ring large = ring();
    large.lineWidth = 10;
    large.fontSize = 24;
    return HStack(
        {.spacing = 14},
        VStack({.spacing = 4}, large, status()),
        VStack(
            {.alignment = HAlign::leading, .spacing = 4},
            WidgetHeader{.title = "Bateria", .icon = "battery.75percent", .color = Palette::accent},
            details()));
}

Ring BatteryView::ring() const {
    const std::int64_t percent = *entry.live.battery;
    const bool low = !entry.live.charging && percent <= 20;
    return Ring::single(static_cast<double>(percent) / 100, low ? Palette::danger : Palette::accent);
}

View BatteryView::status() const {
    return Text(statusText(info(), entry.live)).font(10).foreground(secondary).lineLimit(1);
}

Views BatteryView::details() const {
    const auto* battery = info();
    if (!battery || !entry.freshSnapshot()) return list(OpenAppNote{});
    const auto row = [](const char* name, std::string value) {
        return HStack(
                   {},
                   Text(name).foreground(secondary),
                   Spacer(),
                   Text(std::move(value)).font(11, Weight::semibold))
            .font(11);
    };
    return list(
        ifPresent(battery->health, [&](double health) { return row("Saúde", roundedPercent(health)); }),
        ifPresent(
            battery->cycles, [&](std::int64_t cycles) { return row("Ciclos", std::to_string(cycles)); }),
        ifPresent(
            battery->temperature,
            [&](double celsius) { return row("Temperatura", wholeNumber(celsius) + " °C"); }),
        when(
            battery->watts && *battery->watts >= 1,
            [&] { return row("Carregador", wholeNumber(*battery->watts) + " W"); }),
        row("Limite de carga", battery->limitEnabled ? std::to_string(battery->limit) + "%" : "desligado"));
}

}  // namespace zelto::widget
