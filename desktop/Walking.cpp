#include "Walking.hpp"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace zelto::desktop {
namespace {

using host::ArrangedWidget;

/// Where the middle of a widget is, in tiles.
struct Middle {
    double x, y;
};
Middle middleOf(const ArrangedWidget& each) {
    const host::Span span = host::spanOf(each.widget.family);
    return {
        static_cast<double>(each.slot.cell.column) + static_cast<double>(span.columns) / 2,
        static_cast<double>(each.slot.cell.row) + static_cast<double>(span.rows) / 2};
}

std::optional<std::string> inOrder(
    const std::string& id, bool isForward, std::vector<ArrangedWidget> widgets) {
    if (widgets.empty()) return std::nullopt;
    std::ranges::sort(widgets, {}, [](const ArrangedWidget& each) {
        return std::tuple(each.slot.monitor, each.slot.cell.row, each.slot.cell.column);
    });
    if (!isForward) std::ranges::reverse(widgets);
    const auto from =
        std::ranges::find(widgets, id, [](const ArrangedWidget& each) { return each.widget.id; });
    const auto next = from == widgets.end() ? from : from + 1;
    return (next == widgets.end() ? widgets.front() : *next).widget.id;
}

}  // namespace

std::optional<std::string> stepFrom(
    const std::string& id, Step step, const std::vector<host::ArrangedWidget>& widgets) {
    if (step == Step::next || step == Step::previous) return inOrder(id, step == Step::next, widgets);
    const auto from =
        std::ranges::find(widgets, id, [](const ArrangedWidget& each) { return each.widget.id; });
    if (from == widgets.end()) return std::nullopt;
    const Middle start = middleOf(*from);
    const bool isAcross = step == Step::left || step == Step::right;
    const double sign = step == Step::right || step == Step::down ? 1 : -1;
    const ArrangedWidget* nearest = nullptr;
    double least = 0;
    for (const ArrangedWidget& each : widgets) {
        if (each.slot.monitor != from->slot.monitor) continue;
        const Middle middle = middleOf(each);
        const double along = sign * (isAcross ? middle.x - start.x : middle.y - start.y);
        const double aside = std::abs(isAcross ? middle.y - start.y : middle.x - start.x);
        // More to that side than to another.
        if (along <= 0 || aside > 2 * along) continue;
        const double distance = along + 2 * aside;
        if (nearest && distance >= least) continue;
        nearest = &each;
        least = distance;
    }
    return nearest ? std::optional(nearest->widget.id) : std::nullopt;
}

}  // namespace zelto::desktop
