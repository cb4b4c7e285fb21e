#include "host/TileGrid.hpp"

#include <algorithm>

namespace zelto::host {

bool TileGrid::isFree(Cell cell, widgetkit::WidgetFamily family) const {
    const Span span = spanOf(family);
    if (cell.column < 0 || cell.row < 0) return false;
    if (cell.column > 0 && cell.column + span.columns > columns_) return false;
    for (std::int64_t row = cell.row; row < cell.row + span.rows; ++row)
        for (std::int64_t column = cell.column; column < cell.column + span.columns; ++column)
            if (taken_.contains({column, row})) return false;
    return true;
}

void TileGrid::take(Cell cell, widgetkit::WidgetFamily family) {
    const Span span = spanOf(family);
    for (std::int64_t row = cell.row; row < cell.row + span.rows; ++row)
        for (std::int64_t column = cell.column; column < cell.column + span.columns; ++column)
            taken_.insert({column, row});
}

Cell TileGrid::firstFree(widgetkit::WidgetFamily family) const {
    for (std::int64_t row = 0;; ++row)
        for (std::int64_t column = 0; column < std::max<std::int64_t>(columns_, 1); ++column)
            if (isFree({column, row}, family)) return {column, row};
}

std::optional<Cell> TileGrid::nearestFree(
    Cell cell, widgetkit::WidgetFamily family, std::int64_t rows) const {
    const Span span = spanOf(family);
    std::optional<Cell> nearest;
    std::int64_t least = 0;
    for (std::int64_t row = 0; row + span.rows <= rows; ++row)
        for (std::int64_t column = 0; column + span.columns <= columns_; ++column) {
            const std::int64_t across = column - cell.column, down = row - cell.row;
            const std::int64_t distance = across * across + down * down;
            if ((nearest && distance >= least) || !isFree({column, row}, family)) continue;
            nearest = Cell{column, row};
            least = distance;
        }
    return nearest;
}

std::int64_t TileGrid::usedColumns() const {
    std::int64_t used = 0;
    for (const Cell& cell : taken_) used = std::max(used, cell.column + 1);
    return used;
}

std::int64_t TileGrid::usedRows() const {
    std::int64_t used = 0;
    for (const Cell& cell : taken_) used = std::max(used, cell.row + 1);
    return used;
}

}  // namespace zelto::host
