#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.hpp"
#include "host/PlacedWidget.hpp"

namespace zelto::host {

/// Widgets on a desktop.
inline constexpr std::size_t mostWidgets = 200;

/// A monitor's room for widgets, in tiles.
struct Monitor {
    std::string name;
    std::int64_t columns = 1, rows = 1;
    bool operator==(const Monitor&) const = default;
};
/// The monitors that there are, the primary one first.
using Monitors = std::vector<Monitor>;

/// A place on the desktop: on which of the monitors, and where there.
struct Slot {
    std::size_t monitor = 0;
    Cell cell;
    bool operator==(const Slot&) const = default;
};

/// A widget and where it is shown now.
struct ArrangedWidget {
    PlacedWidget widget;
    Slot slot;
    bool operator==(const ArrangedWidget&) const = default;
};

/// Which widgets are on the desktop and where they belong: a plain value, and the document that keeps it.
/// Each change is a new layout, or why it cannot be.
struct DesktopLayout {
    std::vector<PlacedWidget> widgets;

    const PlacedWidget* find(const std::string& id) const;

    /// With another widget on the first monitor, at `cell` where that is free, otherwise where there is room.
    Result<DesktopLayout> added(
        const std::string& id, const std::string& kind, widgetkit::WidgetFamily family,
        std::optional<Cell> cell, const Monitors& monitors) const;
    Result<DesktopLayout> removed(const std::string& id) const;
    /// To a place where no other widget stands; on the first monitor when none is named.
    Result<DesktopLayout> moved(
        const std::string& id, const std::optional<std::string>& monitor, Cell cell,
        const Monitors& monitors) const;
    /// To one of the monitors that there are. The first one goes without a name, so that a widget on it
    /// follows when it is replaced, unless the widget was sent there by that name.
    Result<DesktopLayout> moved(const std::string& id, Slot slot, const Monitors& monitors) const;
    /// Moves it too when it would cover others, or not fit its monitor, where it stands.
    Result<DesktopLayout> resized(
        const std::string& id, widgetkit::WidgetFamily family, const Monitors& monitors) const;

    /// Finds each widget a place on the monitors that there are: its own where that is there and wide enough,
    /// otherwise a gap. A missing monitor's widgets go to the first one, behind those that belong there.
    /// Where there is no gap either, a widget covers others, but stays on the monitor. Empty without
    /// monitors.
    std::vector<ArrangedWidget> arranged(const Monitors& monitors) const;

    bool operator==(const DesktopLayout&) const = default;
};

}  // namespace zelto::host

ZELTO_RECORD(zelto::host::DesktopLayout, widgets);
