#pragma once

#include "layout/DisplayList.hpp"
#include "layout/TextMeasuring.hpp"

namespace zelto::layout {

struct LayoutOptions {
    Size size;
    /// On each side, in points; only the container background reaches into it.
    double margin = 16;
    /// For countdowns.
    Date now;
};

/// Lays a view out in a widget's room: a proposal goes in, frames come out. The content is centred within the
/// margins.
DisplayList layOut(const ui::View& view, const LayoutOptions& options, TextMeasuring& measuring);

}  // namespace zelto::layout
