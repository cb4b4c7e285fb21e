#pragma once

#include <functional>
#include <optional>
#include <string>

#include "foundation/ISO8601.hpp"
#include "ui/Outline.hpp"
#include "widget/Widgets/ZeltoWidgetBundle.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::test {

inline constexpr widgetkit::WidgetFamily small = widgetkit::WidgetFamily::systemSmall;
inline constexpr widgetkit::WidgetFamily medium = widgetkit::WidgetFamily::systemMedium;
inline constexpr widgetkit::WidgetFamily large = widgetkit::WidgetFamily::systemLarge;

/// Wednesday, 11 March 2026, five past two in the afternoon in São Paulo.
inline const Date wednesday = *parseISO8601("2026-03-11T14:05:00-03:00");

/// What determines one look of a widget.
struct Look {
    widget::LiveData live = widget::placeholderLiveData();
    std::optional<shared::WidgetSnapshot> snapshot = {};
    Date date = wednesday;
    texts::Environment environment = {"pt_BR", "America/Sao_Paulo"};
    Date now = wednesday;
    std::function<std::optional<ui::node::Image>(const std::string& path)> thumbnail = {};
};

/// A widget's view, made by its own configuration from the bundle.
inline ui::View view(const std::string& kind, widgetkit::WidgetFamily family, const Look& look) {
    const widget::ProviderSources sources{
        .now = [&] { return look.date; },
        .live = [&] { return look.live; },
        .snapshot = [&] { return look.snapshot; }};
    const texts::Formatting formatting(look.environment);
    for (const auto& widget : widget::ZeltoWidgetBundle{sources}.body())
        if (widget.info().kind == kind)
            return widget
                .snapshot({family, false}, {family, formatting, [&] { return look.now; }, look.thumbnail})
                .view;
    return ui::View{.node = ui::node::Text{"no widget " + kind}, .modifiers = {}};
}
inline std::string outlineOf(const std::string& kind, widgetkit::WidgetFamily family, const Look& look) {
    return ui::outline(view(kind, family, look));
}

}  // namespace zelto::test
