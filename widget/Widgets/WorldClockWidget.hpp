#pragma once

#include <string>
#include <vector>

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// The time here and in the cities that the user chose.
struct WorldClockWidget {
    widgetkit::WidgetConfiguration body(const ProviderSources& sources) const;
};

struct WorldClockView {
    const widgetkit::EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;

    /// The entry's date as a short time in a zone.
    std::string time(const std::string& zone) const;
    /// From six in the morning until six in the evening.
    bool isDay(const std::string& zone) const;
    /// The last part of a zone's identifier, with blanks for underscores.
    static std::string cityName(const std::string& zone);
    /// The city of a zone; where the local zone has no name, what stands for it.
    std::string placeName(const std::string& zone) const;

  private:
    std::vector<std::string> zones() const;
    ui::Views smallContent() const;
    ui::View mediumContent() const;
    ui::View row(const std::string& zone) const;
    ui::View card(const std::string& zone) const;
};

}  // namespace zelto::widget
