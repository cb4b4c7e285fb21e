#include "SheetGrid.hpp"

#include <cmath>
#include <limits>
#include <tuple>

namespace zelto::cli {
namespace {

constexpr double border = 28;  // points around the tiles
/// More would make a sheet that nobody can look at as one.
constexpr std::int64_t mostColumns = 12;

double edge(std::int64_t tiles) {
    return 2 * border + static_cast<double>(tiles) * host::tilePitch - host::tileGap;
}

host::Cell placeOn(host::TileGrid& grid, widgetkit::WidgetFamily family) {
    const host::Cell cell = grid.firstFree(family);
    grid.take(cell, family);
    return cell;
}

std::int64_t columnsFor(const std::vector<widgetkit::WidgetFamily>& families) {
    std::int64_t best = 1;
    auto least = std::tuple(std::numeric_limits<std::int64_t>::max(), 0.0);
    for (std::int64_t columns = 1; columns <= mostColumns; ++columns) {
        host::TileGrid grid(columns);
        std::int64_t taken = 0;
        for (const widgetkit::WidgetFamily family : families) {
            placeOn(grid, family);
            const host::Span span = host::spanOf(family);
            taken += span.columns * span.rows;
        }
        const double wide = static_cast<double>(grid.usedColumns()),
                     high = static_cast<double>(grid.usedRows());
        const std::tuple cost(
            grid.usedColumns() * grid.usedRows() - taken,
            std::fabs(std::log(wide / std::max(high, 1.0) / 1.5)));
        if (cost >= least) continue;
        least = cost;
        best = columns;
    }
    return best;
}

}  // namespace

SheetGrid::SheetGrid(const std::vector<widgetkit::WidgetFamily>& families) : grid_(columnsFor(families)) {}

layout::Point SheetGrid::place(widgetkit::WidgetFamily family) {
    const host::Cell cell = placeOn(grid_, family);
    return {
        border + static_cast<double>(cell.column) * host::tilePitch,
        border + static_cast<double>(cell.row) * host::tilePitch};
}

layout::Size SheetGrid::size() const {
    return {edge(grid_.usedColumns()), edge(grid_.usedRows())};
}

}  // namespace zelto::cli
