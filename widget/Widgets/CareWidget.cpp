#include "Widgets/CareWidget.hpp"

#include <algorithm>

#include "Common/Palette.hpp"
#include "Common/WidgetHeader.hpp"
#include "Common/ZeltoConfiguration.hpp"
#include "Widgets/WidgetKinds.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace shared;
using namespace ui;
using namespace widgetkit;

WidgetConfiguration CareWidget::body(const ProviderSources& sources) const {
    return zeltoConfiguration<CareWidgetView>(WidgetKinds::care, {.sources = sources})
        .configurationDisplayName("Zelto · Cuidados")
        .description("Resultado da última análise do Mac.")
        .supportedFamilies({WidgetFamily::systemSmall, WidgetFamily::systemMedium});
}

Color CareWidgetView::levelColor(const std::string& level) {
    if (level == "attention") return Palette::warning;
    return level == "info" ? Palette::blue : Palette::accent;
}

std::optional<std::string> CareWidgetView::levelName(const std::string& level) {
    if (level == "attention") return "atenção";
    return level == "info" ? std::optional<std::string>("informação") : std::nullopt;
}

std::string CareWidgetView::verdictText(std::int64_t attentions) {
    if (attentions == 0) return "Tudo certo";
    return std::to_string(attentions) + (attentions == 1 ? " ponto" : " pontos") + " de atenção";
}

View CareWidgetView::body() const {
    std::optional<std::string> when;
    if (entry.snapshot && entry.snapshot->careDate)
        when = environment.formatting.relativeDate(*entry.snapshot->careDate, environment.now());
    return VStack(
               {.alignment = HAlign::leading, .spacing = 6},
               WidgetHeader{
                   .title = "Cuidados",
                   .icon = "sparkles",
                   .color = Palette::accent,
                   .trailing = std::move(when)},
               content())
        .apply(zeltoRoot("open?tab=home"));
}

Views CareWidgetView::content() const {
    if (!entry.snapshot || entry.snapshot->careItems.empty())
        return list(
            Spacer(), Text("Abra o Zelto e toque em Analisar.").font(11).foreground(secondary), Spacer());
    return environment.family == WidgetFamily::systemSmall ? verdict() : list(findings(), Spacer(0));
}

Views CareWidgetView::verdict() const {
    const auto attentions =
        std::ranges::count(entry.snapshot->careItems, "attention", &WidgetSnapshot::CareItem::level);
    return list(
        Spacer(),
        Symbol(attentions == 0 ? "checkmark.seal.fill" : "exclamationmark.triangle.fill")
            .font(30)
            .foreground(attentions == 0 ? Palette::accent : Palette::warning),
        Text(verdictText(attentions)).font(13, Weight::bold).foreground(Palette::white),
        Spacer());
}

View CareWidgetView::findings() const {
    const auto dot = [](const std::string& level) {
        View circle = Filled(Circle{}, levelColor(level)).frame({.width = 7, .height = 7});
        const auto name = levelName(level);
        return name ? std::move(circle).accessibilityLabel(*name) : circle;
    };
    const auto cell = [&](const WidgetSnapshot::CareItem& item) {
        return HStack({.spacing = 5}, dot(item.level), Text(item.title).font(11).lineLimit(1));
    };
    return Grid(
        {.columns = 2, .rowSpacing = 4, .alignment = HAlign::leading},
        forEach(entry.snapshot->careItems, cell));
}

}  // namespace zelto::widget
