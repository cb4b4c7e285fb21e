#include "host/DesktopLayout.hpp"

#include <algorithm>
#include <set>

#include "records/JSONEncoder.hpp"

namespace zelto::host {
namespace {

Fault noWidget(const std::string& id) {
    return {.reason = "no placed widget '" + id + "'"};
}

Fault noRoom() {
    return {.reason = "there is no room for it"};
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

/// The widget where it is, or where there is room when it cannot stand there; a monitor that is not there
/// goes on downward without end.
std::optional<PlacedWidget> settled(
    PlacedWidget widget, const DesktopLayout& layout, const Monitors& monitors) {
    const TileGrid grid = othersBeside(widget, layout, columnsOf(widget.monitor, monitors), monitors);
    const auto monitor = monitors.empty() ? std::nullopt : indexOf(widget.monitor, monitors);
    const auto isRoom = [&](Cell cell) {
        return (!monitor || fits(cell, widget.family, monitors[*monitor])) &&
               grid.isFree(cell, widget.family);
    };
    if (isRoom(widget.cell())) return widget;
    const Cell room = grid.firstFree(widget.family);
    if (!isRoom(room)) return std::nullopt;
    widget.column = room.column;
    widget.row = room.row;
    return widget;
}

/// How a widget that goes to one of the monitors that there are names it.
std::optional<std::string> nameFor(
    const PlacedWidget& widget, std::size_t monitor, const Monitors& monitors) {
    const std::string& name = monitors[monitor].name;
    return monitor == 0 && widget.monitor != name ? std::nullopt : std::optional(name);
}

bool overlap(const PlacedWidget& a, const PlacedWidget& b, const Monitors& monitors) {
    if (!isSameMonitor(a.monitor, b.monitor, monitors)) return false;
    TileGrid grid(farthestTile + 3);
    grid.take(a.cell(), a.family);
    return !grid.isFree(b.cell(), b.family);
}

DesktopLayout with(DesktopLayout layout, const PlacedWidget& changed) {
    *std::ranges::find(layout.widgets, changed.id, &PlacedWidget::id) = changed;
    return layout;
}

/// A place on a monitor for a widget that cannot have its own, if there is one.
std::optional<Cell> roomFor(const PlacedWidget& guest, const TileGrid& grid, const Monitor& monitor) {
    for (const Cell cell : {guest.cell(), grid.firstFree(guest.family)})
        if (fits(cell, guest.family, monitor) && grid.isFree(cell, guest.family)) return cell;
    return std::nullopt;
}

}  // namespace

const PlacedWidget* DesktopLayout::find(const std::string& id) const {
    const auto found = std::ranges::find(widgets, id, &PlacedWidget::id);
    return found == widgets.end() ? nullptr : &*found;
}

bool DesktopLayout::isFree(Slot slot, widgetkit::WidgetFamily family, const Monitors& monitors) const {
    if (slot.monitor >= monitors.size() || !fits(slot.cell, family, monitors[slot.monitor])) return false;
    const PlacedWidget there{.id = {}, .kind = {}, .family = family, .monitor = monitors[slot.monitor].name};
    return othersBeside(there, *this, monitors[slot.monitor].columns, monitors).isFree(slot.cell, family);
}

Result<DesktopLayout> DesktopLayout::added(
    const std::string& id, const std::string& kind, widgetkit::WidgetFamily family, const Wish& wish,
    const Monitors& monitors) const {
    if (wish.monitor && !indexOf(wish.monitor, monitors))
        return Fault{.reason = "no monitor '" + *wish.monitor + "'"};
    const Cell wanted = wish.cell.value_or(Cell{});
    PlacedWidget widget{
        .id = id,
        .kind = kind,
        .family = family,
        .monitor = wish.monitor,
        .column = wanted.column,
        .row = wanted.row};
    if (!records::encodeJSON(widget)) return Fault{.reason = "a kind that is not UTF-8"};
    auto out = restored(widget, widgets.size(), monitors);
    for (std::size_t i = 1; !out && !wish.monitor && i < monitors.size(); ++i) {
        widget.monitor = monitors[i].name;
        out = restored(widget, widgets.size(), monitors);
    }
    return out;
}

Result<DesktopLayout> DesktopLayout::restored(
    const PlacedWidget& widget, std::size_t index, const Monitors& monitors) const {
    if (widgets.size() >= mostWidgets)
        return Fault{.reason = "there are " + std::to_string(mostWidgets) + " widgets already"};
    const auto place = settled(widget, *this, monitors);
    if (!place) return noRoom();
    DesktopLayout out = *this;
    out.widgets.insert(
        out.widgets.begin() + static_cast<std::ptrdiff_t>(std::min(index, out.widgets.size())), *place);
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
    const auto name = nameFor(*widget, slot.monitor, monitors);
    auto plain = moved(id, name, slot.cell, monitors);
    if (plain) return plain;
    PlacedWidget there = *widget;
    there.monitor = name;
    there.column = slot.cell.column;
    there.row = slot.cell.row;
    std::vector<const PlacedWidget*> inTheWay;
    for (const PlacedWidget& other : widgets)
        if (other.id != id && overlap(there, other, monitors)) inTheWay.push_back(&other);
    if (inTheWay.size() != 1) return plain;
    PlacedWidget other = *inTheWay.front();
    const auto home = indexOf(widget->monitor, monitors);
    if (!home) return plain;
    other.monitor = nameFor(other, *home, monitors);
    other.column = widget->column;
    other.row = widget->row;
    DesktopLayout swapped = with(with(*this, there), other);
    const bool isRoom =
        fits(there.cell(), there.family, monitors[slot.monitor]) &&
        fits(other.cell(), other.family, monitors[*home]) &&
        othersBeside(there, swapped, farthestTile + 1, monitors).isFree(there.cell(), there.family) &&
        othersBeside(other, swapped, farthestTile + 1, monitors).isFree(other.cell(), other.family);
    return isRoom ? Result<DesktopLayout>(std::move(swapped)) : plain;
}

Result<DesktopLayout> DesktopLayout::sent(
    const std::string& id, std::size_t monitor, Cell cell, const Monitors& monitors) const {
    const PlacedWidget* widget = find(id);
    if (!widget) return noWidget(id);
    if (monitor >= monitors.size()) return Fault{.reason = "there is no such monitor"};
    PlacedWidget moved = *widget;
    moved.monitor = nameFor(*widget, monitor, monitors);
    const auto gap = othersBeside(moved, *this, monitors[monitor].columns, monitors)
                         .nearestFree(cell, moved.family, monitors[monitor].rows);
    if (!gap) return noRoom();
    moved.column = gap->column;
    moved.row = gap->row;
    return with(*this, moved);
}

Result<DesktopLayout> DesktopLayout::resized(
    const std::string& id, widgetkit::WidgetFamily family, const Monitors& monitors) const {
    const PlacedWidget* widget = find(id);
    if (!widget) return noWidget(id);
    PlacedWidget resized = *widget;
    resized.family = family;
    const auto place = settled(resized, *this, monitors);
    return place ? Result<DesktopLayout>(with(*this, *place)) : noRoom();
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
    std::set<std::string> homeless;
    for (const std::size_t guest : guests) {
        auto& [widget, slot] = out[guest];
        const auto room = roomFor(widget, grids[slot.monitor], monitors[slot.monitor]);
        if (room) {
            slot.cell = *room;
            grids[slot.monitor].take(slot.cell, widget.family);
        } else {
            homeless.insert(widget.id);
        }
    }
    std::erase_if(out, [&](const ArrangedWidget& each) { return homeless.contains(each.widget.id); });
    return out;
}

}  // namespace zelto::host
