#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "Children.hpp"
#include "ui/Values.hpp"

namespace zelto::layout {

/// What a stack must know of a child besides its answers.
struct StackChild {
    enum class Kind : std::uint8_t { other, text, spacer };

    Kind kind = Kind::other;
    // Of a text: whether it may shrink, and whether it is cut at a line limit instead of broken into lines.
    bool shrinks = false;
    bool isLimited = false;
};

struct StackInput {
    /// A row's alignment, or a column's: which of them it is.
    std::variant<ui::VAlign, ui::HAlign> alignment;
    /// Between neighbours, in points; the default when absent.
    std::optional<double> spacing;
    std::span<const StackChild> children;
    ProposedSize proposal;
};

struct StackLayout {
    std::vector<Size> sizes;
    std::vector<double> spacings;  // before each child
    std::vector<ProposedSize> proposals;
    Size size;
    double baseline = 0;  // of a row that aligns by baselines
};

/// Offers each child a share of the room, the least flexible first; in a row, a text that may be cut gives
/// way to one that would be broken into lines, and one that may shrink gives way to all others. Spacers come
/// last.
StackLayout layOutStack(const StackInput& input, Children& children);

/// Where each child begins in the stack's frame.
std::vector<Point> stackOrigins(
    const StackInput& input, const StackLayout& layout, Rect frame, Children& children);

/// Where a child of length `child` begins within `room`.
double aligned(ui::HAlign alignment, double room, double child);

}  // namespace zelto::layout
