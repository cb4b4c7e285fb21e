#pragma once

#include <string>

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// The latest clipboard items; a tap on one copies it again.
struct ClipboardWidget {
    widgetkit::WidgetConfiguration body(const ProviderSources& sources) const;
};

struct ClipboardWidgetView {
    const widgetkit::EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;

    /// A clip's text on one line.
    static std::string rowText(const shared::WidgetSnapshot::Clip& clip);

  private:
    ui::Views rows() const;
};

}  // namespace zelto::widget
