#pragma once

#include <string>
#include <vector>

#include "host/PlacedWidget.hpp"

namespace zelto::test {

/// A placed widget whose id is its kind.
inline host::PlacedWidget widget(
    const std::string& kind, widgetkit::WidgetFamily family, std::int64_t column, std::int64_t row) {
    return {.id = kind, .kind = kind, .family = family, .column = column, .row = row};
}

/// All eleven, in families of all sizes.
inline std::vector<host::PlacedWidget> eleven() {
    using enum widgetkit::WidgetFamily;
    return {
        widget("ZeltoWidget", systemMedium, 0, 0),
        widget("ZeltoBattery", systemSmall, 2, 0),
        widget("ZeltoSystem", systemMedium, 3, 0),
        widget("ZeltoStorage", systemSmall, 5, 0),
        widget("ZeltoFans", systemSmall, 6, 0),
        widget("ZeltoCalendar", systemLarge, 0, 1),
        widget("ZeltoWorldClock", systemMedium, 2, 1),
        widget("ZeltoClipboard", systemLarge, 4, 1),
        widget("ZeltoAwake", systemMedium, 2, 2),
        widget("ZeltoEqualizer", systemSmall, 6, 1),
        widget("ZeltoCare", systemMedium, 0, 3)};
}

}  // namespace zelto::test
