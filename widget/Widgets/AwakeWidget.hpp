#pragma once

#include <string>
#include <string_view>

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// Whether the computer is kept awake, for how long yet, and buttons to change that.
struct AwakeWidget {
    widgetkit::WidgetConfiguration body(const ProviderSources& sources) const;
};

struct AwakeWidgetView {
    const widgetkit::EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;

  private:
    bool active() const;
    ui::View statusRow() const;
    ui::View secondLine() const;
    ui::View buttonRow() const;
    static ui::View button(std::string title, std::string_view path, ui::Color color);
};

}  // namespace zelto::widget
