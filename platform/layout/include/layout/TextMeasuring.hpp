#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "layout/Geometry.hpp"
#include "ui/Modifiers.hpp"

namespace zelto::layout {

struct TextExtent {
    Size size;
    /// Of the first line, from the top.
    double baseline = 0;
};

/// What layout needs to know of fonts and symbols; all in points, independent of any scale.
class TextMeasuring {
  public:
    TextMeasuring() = default;
    TextMeasuring(const TextMeasuring&) = delete;
    TextMeasuring& operator=(const TextMeasuring&) = delete;
    virtual ~TextMeasuring() = default;

    /// A text, broken into lines no wider than `width` when that is given, cut with an ellipsis behind
    /// `lines` lines when that is not 0.
    virtual TextExtent measure(
        std::string_view text, const ui::modifier::Font& font, std::optional<double> width,
        std::int64_t lines) = 0;

    /// The widest part of a text that no line break may divide.
    virtual double longestRun(std::string_view text, const ui::modifier::Font& font) = 0;

    virtual double lineHeight(const ui::modifier::Font& font) = 0;

    /// The room that a symbol takes at a font size.
    virtual Size symbolSize(std::string_view name, double fontSize) = 0;
};

}  // namespace zelto::layout
