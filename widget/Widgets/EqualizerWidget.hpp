#pragma once

#include "platform/ui/View.hpp"
#include "platform/widgetkit/Widget.hpp"
#include "widget/Common/ZeltoProvider.hpp"

namespace zelto {

/// Whether the equalizer is on, its preset and its output.
struct EqualizerWidget {
    ProviderSources sources;
    WidgetConfiguration body() const;
};

struct EqualizerWidgetView {
    const ZeltoEntry& entry;

    ui::View body() const;
};

}  // namespace zelto
