#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/Result.hpp"
#include "ui/View.hpp"

namespace zelto::widgetkit {

/// What a host takes of one view tree: within these bounds, laying out and drawing are safe.
struct ViewBounds {
    std::size_t nodes = 1024;
    std::size_t depth = 48;
    std::size_t modifiers = 32;  // of one node
    std::size_t values = 8192;   // of one list
    std::size_t allValues = std::size_t{32} << 10;
    std::size_t textBytes = std::size_t{16} << 10;
    std::size_t allTextBytes = std::size_t{64} << 10;
    std::size_t links = 64;
    std::size_t linkNameBytes = 256;               // of what is read of a link
    std::size_t linkBytes = std::size_t{8} << 10;  // of a URL
    double points = 10'000;
    double fontPoints = 500;
    std::size_t largeTexts = 8;  // and symbols, each in a font of more than `largePoints`
    double largePoints = 100;
    std::size_t thickStrokes = 64;  // each wider than `thickPoints`: as many as cover a widget
    double thickPoints = 24;
    double seconds = 1e12;         // of dates, from the reference date
    std::int64_t imageSide = 512;  // pixels
};

/// Refuses a view that is out of bounds, with what is wrong with it.
Result<void> check(const ui::View& view, const ViewBounds& bounds = {});

/// What an extension puts into one view tree, whatever it was given to show: less than a host takes, and more
/// than a person sees. Bytes are counted as they are written in JSON.
struct ViewBudget {
    std::size_t nodes = 1000;
    std::size_t textBytes = 1024;                      // of one text, label or symbol's name
    std::size_t allTextBytes = std::size_t{48} << 10;  // of all of them
    std::size_t links = 60;
    std::size_t linkNameBytes = 256;
    std::size_t linkBytes = std::size_t{8} << 10;  // of one link's URL
    double pointsPerStep = 0.25;                   // of a line chart, in which four values are kept
};

/// Cuts a view of a widget `width` points wide to the budget: texts at the end of a user-perceived character,
/// those that come last first; names of links, and those that come last of too many; the ends of lists that
/// are too long; line charts to the first, least, greatest and last value of every step; dates at the ends of
/// the clocks. A link that is too long is left out, and what carried it stays.
void keepToBudget(ui::View& view, double width, const ViewBudget& budget = {});

}  // namespace zelto::widgetkit
