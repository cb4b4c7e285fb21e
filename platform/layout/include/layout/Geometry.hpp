#pragma once

#include <optional>

#include "ui/Size.hpp"

namespace zelto::layout {

/// Points; x grows to the right, y downward.
struct Point {
    double x = 0, y = 0;
    constexpr bool operator==(const Point&) const = default;
};
using ui::Size;
struct Rect {
    double x = 0, y = 0, width = 0, height = 0;

    constexpr Point center() const { return {x + width / 2, y + height / 2}; }
    constexpr bool contains(Point p) const {
        return p.x >= x && p.y >= y && p.x < x + width && p.y < y + height;
    }
    constexpr bool operator==(const Rect&) const = default;
};

/// What a parent offers a child; an absent length asks for the child's ideal one.
struct ProposedSize {
    std::optional<double> width, height;
    constexpr bool operator==(const ProposedSize&) const = default;
};

}  // namespace zelto::layout
