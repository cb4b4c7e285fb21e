#pragma once

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// Whether the equalizer is on, its preset and its output.
struct EqualizerWidget {
    widgetkit::WidgetConfiguration body(const ProviderSources& sources) const;
};

struct EqualizerWidgetView {
    const widgetkit::EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;
};

}  // namespace zelto::widget
