#pragma once

#include <string>
#include <utility>

#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// A widget of the app's: entries from its one provider, and a View made of what surrounds it and an entry.
template <class View>
widgetkit::WidgetConfiguration zeltoConfiguration(std::string kind, ZeltoProvider provider) {
    return widgetkit::StaticConfiguration(
        std::move(kind),
        std::move(provider),
        [](const ZeltoEntry& entry, const widgetkit::EnvironmentValues& environment) {
            return View{environment, entry}.body();
        });
}

}  // namespace zelto::widget
