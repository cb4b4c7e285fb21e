#include "Widgets/FansWidget.hpp"

#include <cmath>
#include <cstdlib>

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

WidgetConfiguration FansWidget::body(const ProviderSources& sources) const {
    return zeltoConfiguration<FansWidgetView>(WidgetKinds::fans, {.sources = sources})
        .configurationDisplayName("Zelto · Ventoinhas")
        .description("Velocidade e modo das ventoinhas.")
        .supportedFamilies({WidgetFamily::systemSmall});
}

double FansWidgetView::ringFraction(const WidgetSnapshot::Fan& fan) {
    if (!(fan.minimum < fan.maximum)) return 0;
    const double fraction = (fan.actual - fan.minimum) / (fan.maximum - fan.minimum);
    return fraction > 0 ? fraction : 0;  // also for what is not a number
}

std::string FansWidgetView::speedText(double speed) {
    const double rounded = std::round(speed);
    if (!(rounded >= -0x1p63 && rounded < 0x1p63)) std::abort();
    return std::to_string(static_cast<std::int64_t>(rounded));
}

std::string FansWidgetView::modeText(const std::optional<std::string>& mode, bool manual) {
    if (mode == "temperature") return "Por temperatura";
    if (mode == "fixed") return "Fixo";
    return manual ? "Manual" : "Automático";
}

View FansWidgetView::body() const {
    return VStack(
               {.spacing = 6},
               WidgetHeader{.title = "Ventoinhas", .icon = "fan", .color = Palette::blue},
               content())
        .apply(zeltoRoot("open?tab=fans"));
}

Views FansWidgetView::content() const {
    const WidgetSnapshot* snap = entry.freshSnapshot();
    if (!snap) return list(Spacer(), OpenAppNote{}, Spacer());
    if (snap->fans.empty())
        return list(Spacer(), Text("Este Mac não tem ventoinhas.").font(10).foreground(secondary), Spacer());

    const auto& fan = snap->fans.front();
    return list(
        Ring{
            .value = ringFraction(fan),
            .color = Palette::blue,
            .label = {},
            .caption = "rpm",
            .lineWidth = 9,
            .fontSize = 18,
            .centerText = speedText(fan.actual),
            .captionIsUnit = true}
            .body()
            .padding(Edges::horizontal, 12),
        Text(modeText(snap->fanMode, fan.manual)).font(10).foreground(secondary),
        ifPresent(snap->chipTemperature, [](double celsius) {
            return Text("chip a " + std::to_string(nearestInteger(celsius)) + "°")
                .font(9)
                .foreground(secondary);
        }));
}

}  // namespace zelto::widget
