#pragma once

#include <compare>
#include <optional>
#include <string>

#include "host/TileGrid.hpp"

namespace zelto::host {

/// What a widget shows depends on: a kind, in a family. All that have the same look show the same.
struct Look {
    std::string kind;
    widgetkit::WidgetFamily family;
    auto operator<=>(const Look&) const = default;
};

/// A widget on the desktop. `column` and `row` are tiles from the monitor's top left corner.
struct PlacedWidget {
    /// Its own name; two widgets of one kind differ in it.
    std::string id;
    std::string kind;
    widgetkit::WidgetFamily family;
    /// The monitor's name; the first one when absent or not there.
    std::optional<std::string> monitor = {};
    std::int64_t column = 0, row = 0;

    Cell cell() const { return {column, row}; }
    Look look() const { return {kind, family}; }
    bool operator==(const PlacedWidget&) const = default;
};

/// Tiles farther out, or down, are refused.
inline constexpr std::int64_t farthestTile = 1000;

}  // namespace zelto::host

ZELTO_RECORD(zelto::host::PlacedWidget, id, kind, family, monitor, column, row);
