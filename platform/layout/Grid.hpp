#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "Children.hpp"
#include "ui/Nodes.hpp"

namespace zelto::layout {

struct GridInput {
    const ui::node::Grid& grid;
    std::size_t count;  // of children
    std::optional<double> width;
};

struct GridLayout {
    double columnWidth = 0;
    std::vector<double> rowHeights;
    Size size;

    /// What each child is offered.
    ProposedSize cell() const { return {columnWidth, std::nullopt}; }
};

/// Columns of one width, which share what is offered, or are as wide as the widest child; rows as high as
/// their highest.
GridLayout layOutGrid(const GridInput& input, Children& children);

/// Where each child begins in the grid's frame.
std::vector<Point> gridOrigins(
    const GridInput& input, const GridLayout& layout, Rect frame, Children& children);

}  // namespace zelto::layout
