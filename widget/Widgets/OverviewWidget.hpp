#pragma once

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// Battery, CPU, memory and disk at a glance, from live readings alone.
struct OverviewWidget {
    widgetkit::WidgetConfiguration body(const ProviderSources& sources) const;
};

struct OverviewView {
    const widgetkit::EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;

  private:
    ui::Views smallContent() const;
    ui::View mediumContent() const;
};

}  // namespace zelto::widget
