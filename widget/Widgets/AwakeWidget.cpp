#include "Widgets/AwakeWidget.hpp"

#include "Common/DeepLink.hpp"
#include "Common/Palette.hpp"
#include "Common/WidgetHeader.hpp"
#include "Common/ZeltoConfiguration.hpp"
#include "Widgets/WidgetKinds.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace shared;
using namespace ui;
using namespace widgetkit;

WidgetConfiguration AwakeWidget::body(const ProviderSources& sources) const {
    return zeltoConfiguration<AwakeWidgetView>(WidgetKinds::awake, {.sources = sources})
        .configurationDisplayName("Zelto · Manter acordado")
        .description("Impede o Mac de dormir. Toque para ligar ou desligar.")
        .supportedFamilies({WidgetFamily::systemSmall, WidgetFamily::systemMedium});
}

bool AwakeWidgetView::active() const {
    const WidgetSnapshot* snap = entry.freshSnapshot();
    return snap && snap->awakeActive;
}

View AwakeWidgetView::body() const {
    return VStack(
               {.spacing = 6},
               WidgetHeader{
                   .title = "Manter acordado", .icon = "cup.and.saucer.fill", .color = Palette::warning},
               statusRow(),
               when(environment.family != WidgetFamily::systemSmall, [&] { return buttonRow(); }))
        .apply(zeltoRoot("awake?action=toggle"));
}

View AwakeWidgetView::statusRow() const {
    const bool small = environment.family == WidgetFamily::systemSmall;
    return HStack(
               {.spacing = 10},
               Symbol(active() ? "cup.and.saucer.fill" : "moon.zzz.fill")
                   .font(small ? 30 : 26)
                   .foreground(active() ? Style(Palette::warning) : Style(secondary)),
               VStack(
                   {.alignment = HAlign::leading, .spacing = 2},
                   Text(active() ? "Acordado" : "Desligado").font(14, Weight::bold),
                   secondLine()),
               when(!small, [] { return Spacer(); }))
        .stretched({.width = false, .height = true});
}

View AwakeWidgetView::secondLine() const {
    if (active() && entry.snapshot->awakeEnd)
        return Countdown(*entry.snapshot->awakeEnd)
            .monospacedDigits(12, Weight::semibold)
            .foreground(Palette::warning)
            .accessibilityLabel("termina em");
    return Text(active() ? "até desligar" : "toque para 1 h").font(10).foreground(secondary);
}

View AwakeWidgetView::buttonRow() const {
    return HStack(
        {.spacing = 5},
        button("30 min", "awake?minutes=30", Palette::warning),
        button("1 h", "awake?minutes=60", Palette::warning),
        button("2 h", "awake?minutes=120", Palette::warning),
        button("∞", "awake?minutes=0", Palette::warning).accessibilityLabel("sem fim"),
        when(active(), [] { return button("Desligar", "awake?action=off", Palette::danger); }));
}

View AwakeWidgetView::button(std::string title, std::string_view path, Color color) {
    return Text(std::move(title))
        .font(10, Weight::bold)
        .stretched({.width = true, .height = false})
        .padding(Edges::vertical, 5)
        .background(RoundedRectangle{7}, color.withOpacity(0.25))
        .link(deepLink(path));
}

}  // namespace zelto::widget
