#include "Grid.hpp"

#include <algorithm>
#include <numeric>

#include "Stack.hpp"

namespace zelto::layout {
namespace {

std::size_t columnsOf(const GridInput& input) {
    return static_cast<std::size_t>(std::max<std::int64_t>(input.grid.columns, 1));
}

}  // namespace

GridLayout layOutGrid(const GridInput& input, Children& children) {
    const std::size_t columns = columnsOf(input);
    const double gaps = static_cast<double>(columns - 1) * input.grid.columnSpacing;
    GridLayout out;
    if (input.width) {
        out.columnWidth = std::max((*input.width - gaps) / static_cast<double>(columns), 0.0);
    } else {
        for (std::size_t i = 0; i < input.count; ++i)
            out.columnWidth = std::max(out.columnWidth, children.measure(i, {}).width);
    }
    for (std::size_t i = 0; i < input.count; ++i) {
        if (i % columns == 0) out.rowHeights.push_back(0);
        out.rowHeights.back() = std::max(out.rowHeights.back(), children.measure(i, out.cell()).height);
    }
    out.size.width = out.columnWidth * static_cast<double>(columns) + gaps;
    out.size.height = std::accumulate(out.rowHeights.begin(), out.rowHeights.end(), 0.0);
    if (!out.rowHeights.empty())
        out.size.height += static_cast<double>(out.rowHeights.size() - 1) * input.grid.rowSpacing;
    return out;
}

std::vector<Point> gridOrigins(
    const GridInput& input, const GridLayout& layout, Rect frame, Children& children) {
    const std::size_t columns = columnsOf(input);
    std::vector<Point> out(input.count);
    double y = frame.y;
    for (std::size_t i = 0; i < input.count; ++i) {
        const std::size_t column = i % columns, row = i / columns;
        if (i > 0 && column == 0) y += layout.rowHeights[row - 1] + input.grid.rowSpacing;
        const Size size = children.measure(i, layout.cell());
        const double x =
            frame.x + static_cast<double>(column) * (layout.columnWidth + input.grid.columnSpacing);
        out[i] = {
            x + aligned(input.grid.alignment, layout.columnWidth, size.width),
            y + (layout.rowHeights[row] - size.height) / 2};
    }
    return out;
}

}  // namespace zelto::layout
