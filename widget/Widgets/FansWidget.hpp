#pragma once

#include <optional>
#include <string>

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// The first fan's speed, the fan-control mode and the chip temperature.
struct FansWidget {
    widgetkit::WidgetConfiguration body(const ProviderSources& sources) const;
};

struct FansWidgetView {
    const widgetkit::EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;

    /// Where the speed lies between the fan's lowest and highest; never below 0, but above 1 when it runs
    /// faster.
    static double ringFraction(const shared::WidgetSnapshot::Fan& fan);
    /// Whole revolutions per minute. A speed that no 64-bit integer holds stops the process.
    static std::string speedText(double speed);
    static std::string modeText(const std::optional<std::string>& mode, bool manual);

  private:
    ui::Views content() const;
};

}  // namespace zelto::widget
