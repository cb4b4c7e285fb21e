#include "cli/SheetGrid.hpp"

namespace zelto::cli {
namespace {

constexpr double border = 28;  // points around the tiles

double edge(std::int64_t tiles) {
    return 2 * border + static_cast<double>(tiles) * host::tilePitch - host::tileGap;
}

}  // namespace

layout::Point SheetGrid::place(WidgetFamily family) {
    const host::Cell cell = grid_.firstFree(family);
    grid_.take(cell, family);
    return {
        border + static_cast<double>(cell.column) * host::tilePitch,
        border + static_cast<double>(cell.row) * host::tilePitch};
}

layout::Size SheetGrid::size() const {
    return {edge(grid_.usedColumns()), edge(grid_.usedRows())};
}

}  // namespace zelto::cli
