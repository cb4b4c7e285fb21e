#pragma once

#include <vector>

#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto {

/// All widgets of the extension, in gallery order.
struct ZeltoWidgetBundle {
    ProviderSources sources = ProviderSources::system();

    std::vector<WidgetConfiguration> body() const;
};

}  // namespace zelto
