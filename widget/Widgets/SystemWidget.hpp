#pragma once

#include <optional>
#include <string>

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// Processor, graphics, memory and chip temperature.
struct SystemWidget {
    widgetkit::WidgetConfiguration body(const ProviderSources& sources) const;
};

struct SystemWidgetView {
    const widgetkit::EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;

  private:
    std::optional<std::string> temperatureText() const;
    ui::Views smallContent() const;
    ui::Views mediumContent() const;
};

}  // namespace zelto::widget
