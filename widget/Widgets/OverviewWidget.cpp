#include "Widgets/OverviewWidget.hpp"

#include "Common/Palette.hpp"
#include "Common/Ring.hpp"
#include "Common/Rounding.hpp"
#include "Common/WidgetHeader.hpp"
#include "Common/ZeltoConfiguration.hpp"
#include "Widgets/WidgetKinds.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace ui;
using namespace widgetkit;

WidgetConfiguration OverviewWidget::body(const ProviderSources& sources) const {
    return zeltoConfiguration<OverviewView>(WidgetKinds::overview, {.sources = sources})
        .configurationDisplayName("Zelto · Visão geral")
        .description("Bateria, CPU, memória e disco do seu Mac.")
        .supportedFamilies({WidgetFamily::systemSmall, WidgetFamily::systemMedium});
}

View OverviewView::body() const {
    const bool small = environment.family == WidgetFamily::systemSmall;
    return VStack(
               {.spacing = 8},
               WidgetHeader{
                   .title = "Zelto",
                   .icon = "waveform.path.ecg",
                   .color = Palette::accent,
                   .trailing = environment.formatting.shortTime(entry.date)},
               small ? smallContent() : list(mediumContent()))
        .apply(zeltoRoot("open?tab=home"));
}

Views OverviewView::smallContent() const {
    const LiveData& live = entry.live;
    const auto batteryRing = [&](std::int64_t percent) {
        const bool low = !live.charging && percent <= 20;
        return Ring::single(
                   static_cast<double>(percent) / 100,
                   low ? Palette::danger : Palette::accent,
                   live.charging ? "carregando" : "bateria")
            .body()
            .padding(Edges::horizontal, 10);
    };
    return list(
        live.battery ? batteryRing(*live.battery)
                     : Ring::single(live.cpu, Palette::loadColor(live.cpu), "CPU").body(),
        HStack(
            {},
            Label("cpu", truncatedPercent(live.cpu)),
            Spacer(),
            Label("memorychip", truncatedPercent(live.memory)))
            .font(10, Weight::semibold));
}

View OverviewView::mediumContent() const {
    const LiveData& live = entry.live;
    return HStack(
        {.spacing = 10},
        ifPresent(
            live.battery,
            [&](std::int64_t percent) {
                return Ring::inRow(
                           static_cast<double>(percent) / 100,
                           Palette::accent,
                           "Bateria",
                           live.charging ? std::optional<std::string>("carregando") : std::nullopt)
                    .body();
            }),
        Ring::inRow(live.cpu, Palette::loadColor(live.cpu), "CPU"),
        Ring::inRow(live.memory, Palette::memory, "Memória"),
        Ring::inRow(
            live.disk,
            Palette::loadColor(live.disk),
            "Disco",
            environment.formatting.byteCount(static_cast<std::int64_t>(live.diskFree)) + " livres"));
}

}  // namespace zelto::widget
