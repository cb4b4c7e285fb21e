#pragma once

#include <vector>

#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// All widgets of the extension, in gallery order.
struct ZeltoWidgetBundle {
    ProviderSources sources = ProviderSources::system();

    std::vector<widgetkit::WidgetConfiguration> body() const;
};

}  // namespace zelto::widget
