#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.hpp"
#include "host/DesktopSettings.hpp"
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

/// Where a new widget is wanted.
struct Wish {
    /// A monitor's name; absent for the first one on which there is room.
    std::optional<std::string> monitor = {};
    /// If it is free there; otherwise, and without it, the first gap.
    std::optional<Cell> cell = {};
};

/// Which widgets are on the desktop and where they belong, and what is set for all of them: a plain value,
/// and the document that keeps it. Each change is a new layout, or why it cannot be.
struct DesktopLayout {
    std::vector<PlacedWidget> widgets;
    std::optional<DesktopSettings> settings = {};

    const PlacedWidget* find(const std::string& id) const;
    /// Whether another widget could stand there.
    bool isFree(Slot slot, widgetkit::WidgetFamily family, const Monitors& monitors) const;

    Result<DesktopLayout> added(
        const std::string& id, const std::string& kind, widgetkit::WidgetFamily family, const Wish& wish,
        const Monitors& monitors) const;
    Result<DesktopLayout> removed(const std::string& id) const;
    /// With a widget again that was there, the `index`th, at its place or, if that is taken, where there is
    /// room.
    Result<DesktopLayout> restored(
        const PlacedWidget& widget, std::size_t index, const Monitors& monitors) const;
    /// To a place where no other widget stands; on the first monitor when none is named.
    Result<DesktopLayout> moved(
        const std::string& id, const std::optional<std::string>& monitor, Cell cell,
        const Monitors& monitors) const;
    /// To one of the monitors that there are. The first one goes without a name, so that a widget on it
    /// follows when it is replaced, unless the widget was sent there by that name. A single widget that
    /// stands there changes places with it where both fit.
    Result<DesktopLayout> moved(const std::string& id, Slot slot, const Monitors& monitors) const;
    /// To the gap of a monitor that is nearest to `cell`.
    Result<DesktopLayout> sent(
        const std::string& id, std::size_t monitor, Cell cell, const Monitors& monitors) const;
    /// Moves it too when it would cover others, or not fit its monitor, where it stands.
    Result<DesktopLayout> resized(
        const std::string& id, widgetkit::WidgetFamily family, const Monitors& monitors) const;

    /// Finds each widget a place on the monitors that there are: its own where that is there and wide enough,
    /// otherwise a gap. A missing monitor's widgets go to the first one, behind those that belong there.
    /// Without those for which there is no gap either. Empty without monitors.
    std::vector<ArrangedWidget> arranged(const Monitors& monitors) const;

    bool operator==(const DesktopLayout&) const = default;
};

}  // namespace zelto::host

ZELTO_RECORD(zelto::host::DesktopLayout, widgets, settings);
