#pragma once

#include <cstddef>
#include <vector>

#include "platform/layout/Geometry.hpp"
#include "platform/widgetkit/WidgetFamily.hpp"

namespace zelto::cli {

/// Finds room for widgets on a grid of tiles, each in the first gap that it fits.
class SheetGrid {
  public:
    explicit SheetGrid(std::size_t columns) : columns_(columns) {}

    /// The top left corner of the widget's place, in points.
    layout::Point place(WidgetFamily family);
    /// Of all places so far, with a border around them, in points.
    layout::Size size() const;

  private:
    bool isFree(std::size_t row, std::size_t column, std::size_t rows, std::size_t columns) const;

    std::size_t columns_;
    std::vector<std::vector<bool>> taken_;
};

}  // namespace zelto::cli
