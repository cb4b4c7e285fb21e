#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Bytes.hpp"
#include "ui/Shapes.hpp"
#include "ui/Values.hpp"

namespace zelto::ui {

struct View;
using Views = std::vector<View>;

/// What a view is.
namespace node {

struct Text {
    std::string text;
    bool operator==(const Text&) const = default;
};
/// The time left until `end`, which ticks where it is drawn.
struct Countdown {
    Date end;
    bool operator==(const Countdown&) const = default;
};
/// A symbol by its name, in the font size and colour of its surroundings.
struct Symbol {
    std::string name;
    bool operator==(const Symbol&) const = default;
};
/// A resizable picture: width × height pixels of red, green, blue and opacity, one byte each, rows from the
/// top.
struct Image {
    std::int64_t width, height;
    Bytes pixels;
    bool operator==(const Image&) const = default;
};
/// The length in points that it never goes below; 8 when absent.
struct Spacer {
    std::optional<double> minLength;
    bool operator==(const Spacer&) const = default;
};
/// An outline, the part of it from its start to the fraction `trim` when that is told, and its paint.
struct Shape {
    Geometry geometry;
    std::optional<double> trim;
    Paint paint;
    bool operator==(const Shape&) const = default;
};
// Spacing in points; the default spacing when absent. (Children have no "= {}": clang 14 rejects it while
// View is incomplete.)
struct VStack {
    HAlign alignment;
    std::optional<double> spacing;
    Views children;
    bool operator==(const VStack&) const;
};
struct HStack {
    VAlign alignment;
    std::optional<double> spacing;
    Views children;
    bool operator==(const HStack&) const;
};
/// Children on top of each other, centred.
struct ZStack {
    Views children;
    bool operator==(const ZStack&) const;
};
/// Rows of cells in columns of equal width.
struct Grid {
    std::int64_t columns;
    double columnSpacing, rowSpacing;
    HAlign alignment;
    Views children;
    bool operator==(const Grid&) const;
};

}  // namespace node

using Node = std::variant<
    node::Text, node::Countdown, node::Symbol, node::Image, node::Spacer, node::Shape, node::VStack,
    node::HStack, node::ZStack, node::Grid>;

}  // namespace zelto::ui
