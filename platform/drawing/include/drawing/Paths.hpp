#pragma once

#include "layout/Geometry.hpp"
#include "ui/Shapes.hpp"

// Cairo's context, by its name alone: its headers stay within the rooms that use it.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the library's own name.
using cairo_t = struct _cairo;

namespace zelto::drawing {

/// Adds a shape's outline to the context's path. A trim is the part of the outline that is taken, from its
/// start: for a circle from three o'clock, clockwise.
void addPath(cairo_t* context, const layout::Rect& frame, const ui::Geometry& geometry, double trim = 1);

/// A rectangle with continuous corners: the curvature grows towards the corner instead of jumping.
void addContinuousRectangle(cairo_t* context, const layout::Rect& frame, double radius);

}  // namespace zelto::drawing
