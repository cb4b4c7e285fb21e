#include "TextFit.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace zelto::layout {
namespace {

/// Lengths that differ by less are the same: what rounding leaves when room is shared out.
constexpr double slack = 0.01;

/// What ends a line wherever it stands.
constexpr std::array<std::string_view, 7> mandatoryBreaks{
    "\n", "\v", "\f", "\r", "\u0085", "\u2028", "\u2029"};

/// A text that may have one line keeps its first one; what is left out is told by an ellipsis.
std::string firstLine(const std::string& text) {
    auto end = std::string::npos;
    for (const std::string_view lineBreak : mandatoryBreaks) end = std::min(end, text.find(lineBreak));
    if (end == std::string::npos) return text;
    while (end > 0 && (text[end - 1] == ' ' || text[end - 1] == '\t')) --end;
    return text.substr(0, end) + "…";
}

}  // namespace

std::string shownText(const std::string& text, std::int64_t lineLimit) {
    std::string shown = lineLimit == 1 ? firstLine(text) : text;
    std::erase(shown, '\0');
    return shown;
}

TextFit fitText(const TextInput& input, const ProposedSize& proposal, TextMeasuring& measuring) {
    const auto& font = input.font;
    const std::string shown = shownText(input.text, input.lineLimit);
    const TextExtent ideal = measuring.measure(shown, font, {}, 0);
    if (!proposal.width || *proposal.width >= ideal.size.width - slack) return {ideal, 1, {}, 0};
    double width = *proposal.width;
    if (input.lineLimit == 0) {
        // It may be broken into lines, but not within what belongs together.
        width = std::max(width, measuring.longestRun(shown, font) * input.minimumScale);
        if (width >= ideal.size.width - slack) return {ideal, 1, {}, 0};
    }
    // Asked how small it can get, a text that may be cut answers with nothing.
    if (width <= 0) return {{{0, measuring.lineHeight(font)}, ideal.baseline}, 1, 0, 1};

    const double scale = std::clamp(width / ideal.size.width, input.minimumScale, 1.0);
    std::int64_t lines = input.lineLimit;
    if (lines == 0 && proposal.height) {
        const double room = std::floor((*proposal.height + slack) / (measuring.lineHeight(font) * scale));
        lines = room < 1 ? 1 : room < 1000 ? static_cast<std::int64_t>(room) : 0;
    }
    const auto scaled = [scale](TextExtent extent) {
        return TextExtent{{extent.size.width * scale, extent.size.height * scale}, extent.baseline * scale};
    };
    if (ideal.size.width * scale <= width + slack) return {scaled(ideal), scale, {}, 0};
    TextExtent cut = scaled(measuring.measure(shown, font, width / scale, lines));
    cut.size.width = std::min(cut.size.width, width);
    return {cut, scale, width, lines};
}

}  // namespace zelto::layout
