#include "Widgets/SystemWidget.hpp"

#include "Common/Palette.hpp"
#include "Common/Ring.hpp"
#include "Common/Rounding.hpp"
#include "Common/Sparkline.hpp"
#include "Common/WidgetHeader.hpp"
#include "Common/ZeltoConfiguration.hpp"
#include "Widgets/WidgetKinds.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace shared;
using namespace ui;
using namespace widgetkit;

WidgetConfiguration SystemWidget::body(const ProviderSources& sources) const {
    return zeltoConfiguration<SystemWidgetView>(WidgetKinds::system, {.sources = sources})
        .configurationDisplayName("Zelto · Sistema")
        .description("CPU, GPU, memória e temperatura do chip.")
        .supportedFamilies({WidgetFamily::systemSmall, WidgetFamily::systemMedium});
}

std::optional<std::string> SystemWidgetView::temperatureText() const {
    const WidgetSnapshot* snap = entry.freshSnapshot();
    if (!snap || !snap->chipTemperature) return std::nullopt;
    return std::to_string(nearestInteger(*snap->chipTemperature)) + "°";
}

View SystemWidgetView::body() const {
    const auto temperature = temperatureText();
    return VStack(
               {.spacing = 6},
               WidgetHeader{
                   .title = "Sistema",
                   .icon = "cpu",
                   .color = Palette::accent,
                   .trailing = temperature ? std::optional("chip " + *temperature) : std::nullopt},
               environment.family == WidgetFamily::systemSmall ? smallContent() : mediumContent())
        .apply(zeltoRoot("open?tab=system"));
}

Views SystemWidgetView::smallContent() const {
    const double cpu = entry.live.cpu;
    // What a figure is of, only its symbol tells.
    const auto figure = [](const char* symbol, const std::string& text, const char* name) {
        return Label(symbol, text).accessibilityLabel(std::string(name) + ", " + text);
    };
    return list(
        Ring::single(cpu, Palette::loadColor(cpu), "CPU").body().padding(Edges::horizontal, 12),
        HStack(
            {},
            figure("memorychip", truncatedPercent(entry.live.memory), "memória"),
            Spacer(),
            ifPresent(
                temperatureText(),
                [&](const auto& text) { return figure("thermometer.medium", text, "chip"); }))
            .font(10, Weight::semibold));
}

Views SystemWidgetView::mediumContent() const {
    const WidgetSnapshot* snap = entry.freshSnapshot();
    const auto used = [&]() -> std::optional<std::string> {
        if (!snap) return std::nullopt;
        return environment.formatting.byteCount(static_cast<std::int64_t>(snap->memoryUsed));
    };
    return list(
        HStack(
            {.spacing = 12},
            Ring::inRow(entry.live.cpu, Palette::loadColor(entry.live.cpu), "CPU"),
            when(snap && snap->gpu, [&] { return Ring::inRow(*snap->gpu, Palette::blue, "GPU").body(); }),
            Ring::inRow(entry.live.memory, Palette::memory, "Memória", used())),
        when(snap && snap->cpuHistory.size() >= 3, [&] {
            return Sparkline{snap->cpuHistory, Palette::accent}.body().frame({.width = {}, .height = 16});
        }));
}

}  // namespace zelto::widget
