#pragma once

#include <cstdint>
#include <optional>
#include <set>

#include "layout/Geometry.hpp"
#include "records/Record.hpp"
#include "widgetkit/WidgetFamily.hpp"

namespace zelto::host {

/// A tile of the grid that widgets stand on.
struct Cell {
    std::int64_t column = 0, row = 0;
    constexpr auto operator<=>(const Cell&) const = default;
};

/// How many tiles a widget covers.
struct Span {
    std::int64_t columns, rows;
    constexpr bool operator==(const Span&) const = default;
};
constexpr Span spanOf(widgetkit::WidgetFamily family) {
    return {
        family == widgetkit::WidgetFamily::systemSmall ? 1 : 2,
        family == widgetkit::WidgetFamily::systemLarge ? 2 : 1};
}

/// From one tile's corner to the next one's, in points; the gap between tiles is part of it.
inline constexpr double tilePitch = 180;
inline constexpr double tileGap = 16;

/// Which tiles are taken. Rows go on downward without end.
class TileGrid {
  public:
    explicit TileGrid(std::int64_t columns) : columns_(columns) {}

    bool isFree(Cell cell, widgetkit::WidgetFamily family) const;
    void take(Cell cell, widgetkit::WidgetFamily family);
    /// The first gap that the widget fits, row by row. On a grid narrower than the widget, the first column.
    Cell firstFree(widgetkit::WidgetFamily family) const;
    /// The gap nearest to a tile, of so many rows; absent where there is none.
    std::optional<Cell> nearestFree(Cell cell, widgetkit::WidgetFamily family, std::int64_t rows) const;

    std::int64_t usedColumns() const;
    std::int64_t usedRows() const;

  private:
    std::int64_t columns_;
    std::set<Cell> taken_;
};

}  // namespace zelto::host
