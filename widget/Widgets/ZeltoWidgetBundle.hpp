#pragma once

#include <vector>

#include "platform/widgetkit/Widget.hpp"
#include "widget/Common/ZeltoProvider.hpp"

namespace zelto {

/// All widgets of the extension, in gallery order.
struct ZeltoWidgetBundle {
    ProviderSources sources = ProviderSources::system();

    std::vector<WidgetConfiguration> body() const;
};

}  // namespace zelto
