#pragma once

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

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
