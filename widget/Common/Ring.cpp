#include "Common/Ring.hpp"

#include <algorithm>
#include <cmath>

#include "Common/Palette.hpp"
#include "Common/Rounding.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace ui;

Ring Ring::single(double value, Color color, std::optional<std::string> caption) {
    return {
        .value = value,
        .color = color,
        .label = {},
        .caption = std::move(caption),
        .lineWidth = 9,
        .fontSize = 22,
        .centerText = {}};
}

Ring Ring::inRow(double value, Color color, std::string label, std::optional<std::string> caption) {
    return {
        .value = value,
        .color = color,
        .label = std::move(label),
        .caption = std::move(caption),
        .lineWidth = 6,
        .fontSize = 14,
        .centerText = {}};
}

double Ring::arcFraction() const {
    return std::isnan(value) ? 0.01 : std::max(std::min(value, 1.0), 0.01);
}

std::string Ring::shownText() const {
    return centerText.value_or(roundedPercent(value));
}

std::string Ring::readText() const {
    if (label) return *label + ", " + shownText() + (caption ? ", " + *caption : "");
    if (caption && captionIsUnit) return shownText() + " " + *caption;
    return caption ? *caption + ", " + shownText() : shownText();
}

View Ring::body() const {
    return VStack(
               {.spacing = 4},
               ZStack(
                   Stroked(Circle{}, {.style = Palette::track, .lineWidth = lineWidth}),
                   Stroked(
                       Circle{},
                       arcFraction(),
                       {.style = color, .lineWidth = lineWidth, .cap = LineCap::round})
                       .rotation(-90),
                   VStack(
                       {.spacing = 0},
                       Text(shownText())
                           .font(fontSize, Weight::bold, Design::rounded)
                           .lineLimit(1)
                           .minimumScale(0.5),
                       ifPresent(
                           caption,
                           [](const auto& text) {
                               return Text(text).font(8).foreground(secondary).lineLimit(1).minimumScale(
                                   0.75);
                           }))
                       .padding(Edges::horizontal, lineWidth)),
               ifPresent(
                   label,
                   [](const auto& text) {
                       return Text(text).font(10, Weight::semibold).foreground(secondary);
                   }))
        .accessibilityLabel(readText());
}

}  // namespace zelto::widget
