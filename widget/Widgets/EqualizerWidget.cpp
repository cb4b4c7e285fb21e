#include "Widgets/EqualizerWidget.hpp"

#include <array>

#include "Common/Palette.hpp"
#include "Common/WidgetHeader.hpp"
#include "Common/ZeltoConfiguration.hpp"
#include "Widgets/WidgetKinds.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace shared;
using namespace ui;
using namespace widgetkit;

namespace {

/// Decoration, not a reading of the equalizer's bands.
constexpr std::array bars{0.5, 0.7, 0.6, 0.4, 0.3, 0.45, 0.55, 0.7, 0.8, 0.65};
constexpr double graphHeight = 34;  // points

}  // namespace

WidgetConfiguration EqualizerWidget::body(const ProviderSources& sources) const {
    return zeltoConfiguration<EqualizerWidgetView>(WidgetKinds::equalizer, {.sources = sources})
        .configurationDisplayName("Zelto · Equalizador")
        .description("Estado e preset do equalizador. Toque para ligar ou desligar.")
        .supportedFamilies({WidgetFamily::systemSmall});
}

View EqualizerWidgetView::body() const {
    const WidgetSnapshot* snap = entry.freshSnapshot();
    const bool enabled = snap && snap->eqEnabled;
    const auto bar = [enabled](double fraction) {
        return Filled(Capsule{}, enabled ? Palette::warning : Palette::track)
            .frame({.width = {}, .height = fraction * graphHeight});
    };
    return VStack(
               {.alignment = HAlign::leading, .spacing = 6},
               WidgetHeader{.title = "Equalizador", .icon = "slider.vertical.3", .color = Palette::warning},
               HStack({.alignment = VAlign::bottom, .spacing = 3}, forEach(bars, bar))
                   .frame({.width = {}, .height = graphHeight}),
               Text(enabled ? "Ligado" : "Desligado").font(13, Weight::bold),
               Text(enabled ? snap->eqPreset : "toque para ligar")
                   .font(10)
                   .foreground(secondary)
                   .lineLimit(1),
               when(
                   enabled && snap->eqOutput,
                   [&] { return Text(*snap->eqOutput).font(9).foreground(secondary).lineLimit(1); }))
        .apply(zeltoRoot("eq"));
}

}  // namespace zelto::widget
