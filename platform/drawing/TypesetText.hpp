#pragma once

#include <string>

#include "platform/drawing/Handles.hpp"
#include "platform/layout/TextMeasuring.hpp"

namespace zelto::drawing {

/// A text with its lines broken and its glyphs chosen.
struct TypesetText {
    TextLayout layout;
    layout::TextExtent extent;
    /// The width of the stroke that rounds the outlines, in points; 0 for plain outlines.
    double roundingStroke = 0;
};

}  // namespace zelto::drawing
