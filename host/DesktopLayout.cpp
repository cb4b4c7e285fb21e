#include "host/DesktopLayout.hpp"

#include <algorithm>

#include "records/JSONEncoder.hpp"

namespace zelto::host {
namespace {

Fault noWidget(const std::string& id) {
    return {.reason = "no placed widget '" + id + "'"};
}

/// The index of the monitor of that name; absent when it is not there.
std::optional<std::size_t> indexOf(const std::optional<std::string>& name, const Monitors& monitors) {
    if (!name) return 0;
    const auto found = std::ranges::find(monitors, *name, &Monitor::name);
    if (found == monitors.end()) return std::nullopt;
    return static_cast<std::size_t>(found - monitors.begin());
}

/// Absent names mean the first monitor, with or without its name.
bool isSameMonitor(
    const std::optional<std::string>& a, const std::optional<std::string>& b, const Monitors& monitors) {
    const std::string first = monitors.empty() ? "" : monitors.front().name;
    return a.value_or(first) == b.value_or(first);
}

std::int64_t columnsOf(const std::optional<std::string>& name, const Monitors& monitors) {
    if (monitors.empty()) return 1;
    return monitors[indexOf(name, monitors).value_or(0)].columns;
}

/// The tiles that others than `widget` take on its monitor, which is taken to be `columns` wide.
TileGrid othersBeside(
    const PlacedWidget& widget, const DesktopLayout& layout, std::int64_t columns, const Monitors& monitors) {
    TileGrid grid(columns);
    for (const PlacedWidget& other : layout.widgets)
        if (other.id != widget.id && isSameMonitor(other.monitor, widget.monitor, monitors))
            grid.take(other.cell(), other.family);
    return grid;
}

bool fits(Cell cell, widgetkit::WidgetFamily family, const Monitor& monitor) {
    const Span span = spanOf(family);
    return cell.column + span.columns <= monitor.columns && cell.row + span.rows <= monitor.rows;
}

/// The widget where it is, or where there is room when it cannot stand there.
PlacedWidget settled(PlacedWidget widget, const DesktopLayout& layout, const Monitors& monitors) {
    const TileGrid grid = othersBeside(widget, layout, columnsOf(widget.monitor, monitors), monitors);
    const auto monitor = monitors.empty() ? std::nullopt : indexOf(widget.monitor, monitors);
    const bool isWithin = !monitor || fits(widget.cell(), widget.family, monitors[*monitor]);
    if (isWithin && grid.isFree(widget.cell(), widget.family)) return widget;
    const Cell room = grid.firstFree(widget.family);
    widget.column = room.column;
    widget.row = room.row;
    return widget;
}

DesktopLayout with(DesktopLayout layout, const PlacedWidget& changed) {
    *std::ranges::find(layout.widgets, changed.id, &PlacedWidget::id) = changed;
    return layout;
}

/// The nearest place that is on the monitor.
Cell drawnIn(Cell cell, widgetkit::WidgetFamily family, const Monitor& monitor) {
    const Span span = spanOf(family);
    const auto within = [](std::int64_t tile, std::int64_t tiles, std::int64_t covered) {
        return std::min(tile, std::max<std::int64_t>(tiles - covered, 0));
    };
    return {within(cell.column, monitor.columns, span.columns), within(cell.row, monitor.rows, span.rows)};
}

/// A place on a monitor for a widget that cannot have its own.
Cell roomFor(const PlacedWidget& guest, const TileGrid& grid, const Monitor& monitor) {
    for (const Cell cell : {guest.cell(), grid.firstFree(guest.family)})
        if (fits(cell, guest.family, monitor) && grid.isFree(cell, guest.family)) return cell;
    return drawnIn(guest.cell(), guest.family, monitor);
}

}  // namespace

const PlacedWidget* DesktopLayout::find(const std::string& id) const {
    const auto found = std::ranges::find(widgets, id, &PlacedWidget::id);
    return found == widgets.end() ? nullptr : &*found;
}

Result<DesktopLayout> DesktopLayout::added(
    const std::string& id, const std::string& kind, widgetkit::WidgetFamily family, std::optional<Cell> cell,
    const Monitors& monitors) const {
    if (widgets.size() >= mostWidgets)
        return Fault{.reason = "there are " + std::to_string(mostWidgets) + " widgets already"};
    PlacedWidget widget{.id = id, .kind = kind, .family = family};
    if (!records::encodeJSON(widget)) return Fault{.reason = "a kind that is not UTF-8"};
    const Cell wanted = cell.value_or(Cell{});
    widget.column = wanted.column;
    widget.row = wanted.row;
    DesktopLayout out = *this;
    out.widgets.push_back(settled(widget, *this, monitors));
    return out;
}

Result<DesktopLayout> DesktopLayout::removed(const std::string& id) const {
    DesktopLayout out = *this;
    if (std::erase_if(out.widgets, [&](const PlacedWidget& widget) { return widget.id == id; }) == 0)
        return noWidget(id);
    return out;
}

Result<DesktopLayout> DesktopLayout::moved(
    const std::string& id, const std::optional<std::string>& monitor, Cell cell,
    const Monitors& monitors) const {
    const PlacedWidget* widget = find(id);
    if (!widget) return noWidget(id);
    PlacedWidget moved = *widget;
    moved.monitor = monitor;
    moved.column = std::clamp<std::int64_t>(cell.column, 0, farthestTile);
    moved.row = std::clamp<std::int64_t>(cell.row, 0, farthestTile);
    // The monitor may be one that is not there now: how wide it is does not matter.
    if (!othersBeside(moved, *this, farthestTile + 1, monitors).isFree(moved.cell(), moved.family))
        return Fault{.reason = "another widget stands there"};
    return with(*this, moved);
}

Result<DesktopLayout> DesktopLayout::moved(const std::string& id, Slot slot, const Monitors& monitors) const {
    const PlacedWidget* widget = find(id);
    if (!widget) return noWidget(id);
    if (slot.monitor >= monitors.size()) return Fault{.reason = "there is no such monitor"};
    std::optional<std::string> name = monitors[slot.monitor].name;
    if (slot.monitor == 0 && widget->monitor != name) name.reset();
    return moved(id, name, slot.cell, monitors);
}

Result<DesktopLayout> DesktopLayout::resized(
    const std::string& id, widgetkit::WidgetFamily family, const Monitors& monitors) const {
    const PlacedWidget* widget = find(id);
    if (!widget) return noWidget(id);
    PlacedWidget resized = *widget;
    resized.family = family;
    return with(*this, settled(resized, *this, monitors));
}

std::vector<ArrangedWidget> DesktopLayout::arranged(const Monitors& monitors) const {
    std::vector<ArrangedWidget> out;
    if (monitors.empty()) return out;
    std::vector<TileGrid> grids;
    for (const Monitor& monitor : monitors) grids.emplace_back(monitor.columns);
    std::vector<std::size_t> guests;  // their places in `out`
    for (const PlacedWidget& widget : widgets) {
        const auto home = indexOf(widget.monitor, monitors);
        const std::size_t monitor = home.value_or(0);
        if (!home || !fits(widget.cell(), widget.family, monitors[monitor]) ||
            !grids[monitor].isFree(widget.cell(), widget.family))
            guests.push_back(out.size());
        else
            grids[monitor].take(widget.cell(), widget.family);
        out.push_back({widget, {monitor, widget.cell()}});
    }
    for (const std::size_t guest : guests) {
        auto& [widget, slot] = out[guest];
        slot.cell = roomFor(widget, grids[slot.monitor], monitors[slot.monitor]);
        grids[slot.monitor].take(slot.cell, widget.family);
    }
    return out;
}

}  // namespace zelto::host
