#pragma once

#include <optional>
#include <string>

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto::widget {

/// The next calendar events, with a button to join a meeting.
struct CalendarWidget {
    widgetkit::WidgetConfiguration body(const ProviderSources& sources) const;
};

struct CalendarWidgetView {
    const widgetkit::EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;

  private:
    ui::View header() const;
    ui::Views content() const;
};

/// One event's row.
struct EventLine {
    const shared::WidgetSnapshot::Event& event;
    Date now;
    const widgetkit::EnvironmentValues& environment;

    ui::View body() const;
    std::string timeText() const;
    /// Where a meeting is joined.
    static std::string joinLink(const texts::URL& meeting);
};

}  // namespace zelto::widget
