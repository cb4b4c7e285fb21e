#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/PlacedWidget.hpp"

namespace zelto::host {

/// A monitor's room, in tiles.
struct DeskTiles {
    std::string name;
    std::int64_t columns, rows;
};

/// Where a widget comes to stand: on which of the desks, and where there.
struct Standing {
    std::size_t desk;
    Cell cell;
    bool operator==(const Standing&) const = default;
};

/// Finds each widget a place on the monitors that there are, by its id: its own where that is there and wide
/// enough, otherwise a gap. A missing monitor's widgets go to the first desk, behind those that belong there.
/// Where there is no gap either, a widget covers others, but stays on the desk. Empty without desks.
std::map<std::string, Standing> arrange(
    const std::vector<PlacedWidget>& widgets, const std::vector<DeskTiles>& desks);

}  // namespace zelto::host
