#pragma once

#include "host/TileGrid.hpp"

namespace zelto::cli {

/// Finds room for widgets on a contact sheet, each in the first gap that it fits.
class SheetGrid {
  public:
    explicit SheetGrid(std::int64_t columns) : grid_(columns) {}

    /// The top left corner of the widget's place, in points.
    layout::Point place(WidgetFamily family);
    /// Of all places so far, with a border around them, in points.
    layout::Size size() const;

  private:
    host::TileGrid grid_;
};

}  // namespace zelto::cli
