#pragma once

#include <string>

#include "Common/Ring.hpp"
#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// Charge, status and, in the medium family, details of the battery.
struct BatteryWidget {
    widgetkit::WidgetConfiguration body(const ProviderSources& sources) const;
};

struct BatteryView {
    const widgetkit::EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;

    /// What the battery is doing; `info` is what the app knows of it, or null.
    static std::string statusText(const shared::WidgetSnapshot::Battery* info, const LiveData& live);

  private:
    const shared::WidgetSnapshot::Battery* info() const;
    ui::View content() const;
    ui::View smallContent() const;
    ui::View mediumContent() const;
    Ring ring() const;
    ui::View status() const;
    ui::Views details() const;
};

}  // namespace zelto::widget
