#pragma once

#include <optional>
#include <string>

#include "ui/Shapes.hpp"
#include "ui/Values.hpp"

namespace zelto::ui {

/// What is done to a view. None holds a view, so that a view is one node and a flat list of these.
namespace modifier {

// What everything inside inherits, unless it says otherwise itself.
struct Font {
    double size;  // points
    Weight weight = Weight::regular;
    Design design = Design::standard;
    Digits digits = Digits::proportional;
    bool operator==(const Font&) const = default;
};
struct Foreground {
    Style style;
    bool operator==(const Foreground&) const = default;
};
struct LineLimit {
    std::int64_t lines;
    bool operator==(const LineLimit&) const = default;
};
/// How far a text may shrink to fit: a factor from 0 to 1.
struct MinimumScale {
    double factor;
    bool operator==(const MinimumScale&) const = default;
};

// What changes the room that the view takes, in points.
struct Padding {
    double top, leading, bottom, trailing;
    bool operator==(const Padding&) const = default;
};
/// A fixed size; the content is centred and may overflow.
struct Frame {
    std::optional<double> width, height;
    bool operator==(const Frame&) const = default;
};
/// As much room as there is, along one axis or both; the content is centred.
struct Stretch {
    bool width, height;
    bool operator==(const Stretch&) const = default;
};
/// Keeps an image's aspect ratio while it covers what it is offered.
struct ScaledToFill {
    bool operator==(const ScaledToFill&) const = default;
};

// What is drawn with it.
/// Clockwise, about the centre.
struct Rotation {
    double degrees;
    bool operator==(const Rotation&) const = default;
};
struct Background {
    Geometry geometry;
    Style style;
    bool operator==(const Background&) const = default;
};
struct ClipShape {
    Geometry geometry;
    bool operator==(const ClipShape&) const = default;
};

// What a tap does.
struct Link {
    std::string url;
    bool operator==(const Link&) const = default;
};
/// Where a tap that meets no link goes; one per tree.
struct WidgetURL {
    std::string url;
    bool operator==(const WidgetURL&) const = default;
};
/// What fills the whole widget, its margins included; one per tree.
struct ContainerBackground {
    LinearGradient gradient;
    bool operator==(const ContainerBackground&) const = default;
};

/// What an assistive technology reads instead of what is inside; of a countdown, before the time left.
struct AccessibilityLabel {
    std::string label;
    bool operator==(const AccessibilityLabel&) const = default;
};

}  // namespace modifier

using Modifier = std::variant<
    modifier::Font, modifier::Foreground, modifier::LineLimit, modifier::MinimumScale, modifier::Padding,
    modifier::Frame, modifier::Stretch, modifier::ScaledToFill, modifier::Rotation, modifier::Background,
    modifier::ClipShape, modifier::Link, modifier::WidgetURL, modifier::ContainerBackground,
    modifier::AccessibilityLabel>;

}  // namespace zelto::ui
