#pragma once

#include <vector>

#include "ui/Values.hpp"

namespace zelto::ui {

// Geometry: the outline that a shape has in the rectangle that it is given. Nothing of paint.

/// The largest circle that fits, centred.
struct Circle {
    bool operator==(const Circle&) const = default;
};
/// A rectangle whose shorter sides are half circles, with continuous corners.
struct Capsule {
    bool operator==(const Capsule&) const = default;
};
/// Continuous corners; the radius in points.
struct RoundedRectangle {
    double radius;
    bool operator==(const RoundedRectangle&) const = default;
};
/// Straight segments through points that share the width equally; a fraction of 1 is the top edge, 0 the
/// bottom edge. Fewer than two draw nothing.
struct Polyline {
    std::vector<double> fractions;
    bool operator==(const Polyline&) const = default;
};
using Geometry = std::variant<Circle, Capsule, RoundedRectangle, Polyline>;

// Paint: what is done with the outline.

struct Fill {
    Style style;
    bool operator==(const Fill&) const = default;
};
/// Straddles the outline; the width in points.
struct Stroke {
    Style style;
    double lineWidth;
    LineCap cap = LineCap::butt;
    LineJoin join = LineJoin::miter;
    double miterLimit = 10;
    bool operator==(const Stroke&) const = default;
};
using Paint = std::variant<Fill, Stroke>;

}  // namespace zelto::ui

ZELTO_RECORD(zelto::ui::Circle);
ZELTO_RECORD(zelto::ui::Capsule);
ZELTO_RECORD(zelto::ui::RoundedRectangle, radius);
ZELTO_RECORD(zelto::ui::Polyline, fractions);
ZELTO_RECORD(zelto::ui::Fill, style);
ZELTO_RECORD(zelto::ui::Stroke, style, lineWidth, cap, join, miterLimit);
