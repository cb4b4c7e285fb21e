#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "layout/Geometry.hpp"
#include "layout/TextMeasuring.hpp"
#include "ui/Modifiers.hpp"

namespace zelto::layout {

struct TextInput {
    const std::string& text;
    const ui::modifier::Font& font;
    std::int64_t lineLimit;  // 0 for none
    double minimumScale;     // 1 for a text that does not shrink
};

/// How a text is shown in the room that it is offered.
struct TextFit {
    TextExtent extent;
    double scale;
    /// In which it is broken into lines or cut, in points; absent when it fits on one line.
    std::optional<double> width;
    std::int64_t lines;  // at most; 0 for as many as it needs
};

/// One line if it fits; otherwise it shrinks as far as it may, then is broken into as many lines as there is
/// room for, never within a run that belongs together, and what is left over is cut.
TextFit fitText(const TextInput& input, const ProposedSize& proposal, TextMeasuring& measuring);

/// What of a text is shown: its first line, if it may have but one; U+0000, at which drawing would stop, has
/// no look of its own and is left out.
std::string shownText(const std::string& text, std::int64_t lineLimit);

}  // namespace zelto::layout
