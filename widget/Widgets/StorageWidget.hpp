#pragma once

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// How full the start-up disk is.
struct StorageWidget {
    widgetkit::WidgetConfiguration body(const ProviderSources& sources) const;
};

struct StorageWidgetView {
    const widgetkit::EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;
};

}  // namespace zelto::widget
