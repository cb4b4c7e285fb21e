#pragma once

#include "layout/DisplayList.hpp"
#include "layout/TextMeasuring.hpp"

namespace zelto::layout {

/// How a view is to stand out: as it is made, or for eyes that need more: the secondary style as strong as
/// the primary one, on black, within a border. The colours that a view names stay.
enum class Contrast { normal, high };

struct LayoutOptions {
    Size size;
    /// On each side, in points; only the container background reaches into it.
    double margin = 16;
    /// For countdowns.
    Date now;
    Contrast contrast = Contrast::normal;
};

/// Lays a view out in a widget's room: a proposal goes in, frames come out. The content is centred within the
/// margins.
DisplayList layOut(const ui::View& view, const LayoutOptions& options, TextMeasuring& measuring);

}  // namespace zelto::layout
