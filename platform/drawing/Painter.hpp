#pragma once

#include "Handles.hpp"
#include "Masks.hpp"
#include "Typesetter.hpp"
#include "layout/Placement.hpp"

namespace zelto::drawing {

/// What a painter paints with and keeps between pictures.
struct PaintingTools {
    Typesetter& typesetter;
    MaskCache& masks;
    /// Pixels to be had, so that masks and snapping to them make sense; otherwise everything stays outlines.
    bool toPixels = true;
};

/// Paints the items of a placement; the container background is the caller's.
void paint(cairo_t* context, const layout::Placement& placement, const PaintingTools& tools);

}  // namespace zelto::drawing
