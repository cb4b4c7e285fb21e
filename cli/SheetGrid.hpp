#pragma once

#include <vector>

#include "host/TileGrid.hpp"

namespace zelto::cli {

/// Finds room for widgets on a contact sheet, each in the first gap that it fits.
class SheetGrid {
  public:
    /// As many columns as leave the fewest tiles empty when widgets of these families are placed in this
    /// order; of several such numbers the one whose sheet comes nearest to three by two.
    explicit SheetGrid(const std::vector<widgetkit::WidgetFamily>& families);

    /// The top left corner of the widget's place, in points.
    layout::Point place(widgetkit::WidgetFamily family);
    /// Of all places so far, with a border around them, in points.
    layout::Size size() const;

  private:
    host::TileGrid grid_;
};

}  // namespace zelto::cli
