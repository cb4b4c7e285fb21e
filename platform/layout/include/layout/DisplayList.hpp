#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "layout/Geometry.hpp"
#include "ui/View.hpp"

namespace zelto::layout {

// A laid-out view: what is to be painted, in painting order, with nothing left to decide. Colours are
// resolved (a style always holds a colour), lengths are in points.

struct PlacedText {
    Rect frame;
    std::string text;
    ui::modifier::Font font;
    /// What the text is shrunk by; the font is still chosen by its own size.
    double scale;
    ui::Color color;
    /// The width in which it is broken into lines or cut; absent for a single line as long as it wants to be.
    std::optional<double> width;
    /// The line behind which it is cut with an ellipsis; 0 for none.
    std::int64_t lines;
    bool operator==(const PlacedText&) const = default;
};
/// The countdown's text is `text` at the instant that the layout was made for; its digits change with every
/// second.
struct PlacedCountdown {
    PlacedText text;
    Date end;
    bool operator==(const PlacedCountdown&) const = default;
};
struct PlacedSymbol {
    Rect frame;
    std::string name;
    double fontSize;
    ui::Color color;
    bool operator==(const PlacedSymbol&) const = default;
};
struct PlacedShape {
    Rect frame;
    ui::Geometry geometry;
    std::optional<double> trim;
    ui::Paint paint;
    bool operator==(const PlacedShape&) const = default;
};
struct PlacedImage {
    Rect frame;
    ui::node::Image image;
    bool operator==(const PlacedImage&) const = default;
};
/// Everything up to the matching End is clipped to the shape.
struct BeginClip {
    Rect frame;
    ui::Geometry geometry;
    bool operator==(const BeginClip&) const = default;
};
/// Everything up to the matching End is turned clockwise about `center`.
struct BeginRotation {
    Point center;
    double degrees;
    bool operator==(const BeginRotation&) const = default;
};
struct End {
    bool operator==(const End&) const = default;
};
using DisplayItem = std::variant<
    PlacedText, PlacedCountdown, PlacedSymbol, PlacedShape, PlacedImage, BeginClip, BeginRotation, End>;

/// Where a tap opens a link of its own. `name` is what is read of it aloud.
struct LinkArea {
    Rect frame;
    std::string url;
    std::string name;
    bool operator==(const LinkArea&) const = default;
};

struct DisplayList {
    Size size;
    std::optional<ui::LinearGradient> background;
    std::vector<DisplayItem> items;
    /// What a tap opens: the last area that it meets, otherwise the widget's own link.
    std::vector<LinkArea> links;
    std::optional<std::string> widgetURL;
    /// Pixels of white along the outline.
    int border = 0;

    bool operator==(const DisplayList&) const = default;
};

/// One item a line, frames as "x,y width×height" with at most two decimals.
std::string dump(const DisplayList& displayList);

}  // namespace zelto::layout
