#pragma once

#include "Handles.hpp"
#include "Masks.hpp"
#include "Typesetter.hpp"
#include "layout/DisplayList.hpp"

namespace zelto::drawing {

/// What a painter paints with and keeps between pictures.
struct PaintingTools {
    Typesetter& typesetter;
    MaskCache& masks;
    /// Pixels to be had, so that masks and snapping to them make sense; otherwise everything stays outlines.
    bool toPixels = true;
};

/// Paints the items of a displayList; the container background is the caller's.
void paint(cairo_t* context, const layout::DisplayList& displayList, const PaintingTools& tools);

}  // namespace zelto::drawing
