#pragma once

#include <span>
#include <string_view>

namespace zelto::drawing {

/// One outline of a symbol on a grid of 24 units: operations 0 (move), 1 (line), 2 (cubic) and 3 (close),
/// each followed by its coordinates.
struct SymbolPath {
    std::span<const double> data;
    bool filled, evenOdd;
    double strokeWidth;  // 0 for none
    bool roundCap, roundJoin;
};

struct Symbol {
    std::string_view name;
    double left, right;  // of its ink on the grid
    std::span<const SymbolPath> paths;
};

/// Made by the build from the SVG files in symbols/, in the order of their names.
std::span<const Symbol> allSymbols();

/// Null for a name that nobody drew.
const Symbol* symbolNamed(std::string_view name);

/// The same for a grid `side` pixels wide: on so few that strokes would be blots, the cut made for them where
/// there is one, whose file is called NAME@12.svg.
const Symbol* symbolFor(std::string_view name, double side);

/// The side of a symbol's grid at a font size, in points. It stands in the middle of whole points.
constexpr double symbolSide(double fontSize) {
    return 1.2 * fontSize;
}

}  // namespace zelto::drawing
