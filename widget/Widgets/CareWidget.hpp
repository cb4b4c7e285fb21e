#pragma once

#include <optional>
#include <string>

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// The result of the last health analysis.
struct CareWidget {
    widgetkit::WidgetConfiguration body(const ProviderSources& sources) const;
};

struct CareWidgetView {
    const widgetkit::EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;

    static ui::Color levelColor(const std::string& level);
    /// What is read of a finding's dot; absent where there is nothing to do.
    static std::optional<std::string> levelName(const std::string& level);
    /// "Tudo certo", or how many points of attention there are.
    static std::string verdictText(std::int64_t attentions);

  private:
    ui::Views content() const;
    ui::Views verdict() const;
    ui::View findings() const;
};

}  // namespace zelto::widget
