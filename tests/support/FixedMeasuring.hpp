#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "layout/TextMeasuring.hpp"

namespace zelto::test {

/// A font without a font: every character is half the size wide, every line 1.2 times the size high with its
/// baseline at the size. Lines break at any character.
class FixedMeasuring : public layout::TextMeasuring {
  public:
    layout::TextExtent measure(
        std::string_view text, const ui::modifier::Font& font, std::optional<double> width,
        std::int64_t lines) override {
        const double advance = font.size / 2;
        const auto characters =
            static_cast<double>(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
        if (!width || characters * advance <= *width)
            return {{characters * advance, lineHeight(font)}, font.size};
        const double perLine = std::max(std::floor(*width / advance), 1.0);
        double count = std::ceil(characters / perLine);
        if (lines > 0) count = std::min(count, static_cast<double>(lines));
        return {{perLine * advance, count * lineHeight(font)}, font.size};
    }
    /// Blanks divide, but for the no-break space.
    double longestRun(std::string_view text, const ui::modifier::Font& font) override {
        double longest = 0;
        while (!text.empty()) {
            const auto run = text.substr(0, text.find_first_of(" \n"));
            longest = std::max(longest, measure(run, font, {}, 0).size.width);
            text.remove_prefix(std::min(run.size() + 1, text.size()));
        }
        return longest;
    }
    double lineHeight(const ui::modifier::Font& font) override { return font.size * 1.2; }
    layout::Size symbolSize(std::string_view, double fontSize) override { return {fontSize, fontSize * 1.2}; }
};

}  // namespace zelto::test
