#pragma once

#include <optional>
#include <string>

#include "ui/View.hpp"
#include "widget/Common/ZeltoProvider.hpp"
#include "widgetkit/Widget.hpp"

namespace zelto {

/// The next calendar events, with a button to join a meeting.
struct CalendarWidget {
    WidgetConfiguration body(const ProviderSources& sources) const;
};

struct CalendarWidgetView {
    const EnvironmentValues& environment;
    const ZeltoEntry& entry;

    ui::View body() const;

  private:
    ui::View header() const;
    ui::Views content() const;
};

/// One event's row.
struct EventLine {
    const WidgetSnapshot::Event& event;
    Date now;
    const EnvironmentValues& environment;

    ui::View body() const;
    std::string timeText() const;
    /// Where a meeting is joined.
    static std::string joinLink(const URL& meeting);
};

}  // namespace zelto
