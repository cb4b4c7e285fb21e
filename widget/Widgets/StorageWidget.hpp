#pragma once

#include "platform/ui/View.hpp"
#include "platform/widgetkit/Widget.hpp"
#include "widget/Common/ZeltoProvider.hpp"

namespace zelto {

/// How full the start-up disk is.
struct StorageWidget {
    ProviderSources sources;
    WidgetConfiguration body() const;
};

struct StorageWidgetView {
    const ZeltoEntry& entry;
    const Formatting& formatting;

    ui::View body() const;
};

}  // namespace zelto
