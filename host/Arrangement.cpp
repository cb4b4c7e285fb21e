#include "host/Arrangement.hpp"

#include <algorithm>

namespace zelto::host {
namespace {

bool fits(Cell cell, WidgetFamily family, const DeskTiles& desk) {
    const Span span = spanOf(family);
    return cell.column + span.columns <= desk.columns && cell.row + span.rows <= desk.rows;
}

/// The nearest place that is on the desk.
Cell drawnIn(Cell cell, WidgetFamily family, const DeskTiles& desk) {
    const Span span = spanOf(family);
    const auto within = [](std::int64_t tile, std::int64_t tiles, std::int64_t covered) {
        return std::min(tile, std::max<std::int64_t>(tiles - covered, 0));
    };
    return {within(cell.column, desk.columns, span.columns), within(cell.row, desk.rows, span.rows)};
}

}  // namespace

std::map<std::string, Standing> arrange(
    const std::vector<PlacedWidget>& widgets, const std::vector<DeskTiles>& desks) {
    std::map<std::string, Standing> out;
    if (desks.empty()) return out;
    std::vector<TileGrid> grids;
    for (const DeskTiles& desk : desks) grids.emplace_back(desk.columns);

    std::vector<std::pair<const PlacedWidget*, std::size_t>> guests;
    for (const PlacedWidget& widget : widgets) {
        const auto named =
            widget.monitor ? std::ranges::find(desks, *widget.monitor, &DeskTiles::name) : desks.begin();
        const std::size_t desk = named == desks.end() ? 0 : static_cast<std::size_t>(named - desks.begin());
        const bool isHome = named != desks.end() && fits(widget.cell(), widget.family, desks[desk]) &&
                            grids[desk].isFree(widget.cell(), widget.family);
        if (!isHome) {
            guests.emplace_back(&widget, desk);
            continue;
        }
        grids[desk].take(widget.cell(), widget.family);
        out[widget.id] = {desk, widget.cell()};
    }
    for (const auto& guest : guests) {
        const PlacedWidget* widget = guest.first;
        const std::size_t desk = guest.second;
        Cell cell = widget->cell();
        const auto isGood = [&] {
            return fits(cell, widget->family, desks[desk]) && grids[desk].isFree(cell, widget->family);
        };
        if (!isGood()) cell = grids[desk].firstFree(widget->family);
        if (!isGood()) cell = drawnIn(widget->cell(), widget->family, desks[desk]);
        grids[desk].take(cell, widget->family);
        out[widget->id] = {desk, cell};
    }
    return out;
}

}  // namespace zelto::host
