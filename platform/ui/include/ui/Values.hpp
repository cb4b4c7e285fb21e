#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <variant>

#include "records/Record.hpp"

namespace zelto::ui {

inline constexpr double infinity = std::numeric_limits<double>::infinity();

/// A colour of the sRGB colour space; components and opacity from 0 to 1.
struct Color {
    double red, green, blue;
    double opacity = 1;

    constexpr Color withOpacity(double o) const { return {red, green, blue, o}; }
    constexpr bool operator==(const Color&) const = default;
};

/// "#40D9B2", or "#FFFFFF1F" when it is not opaque. A component halfway between two steps takes the lower
/// one.
std::string hexText(const Color& color);

/// The hierarchical secondary foreground: the inherited foreground at reduced emphasis.
struct Secondary {
    constexpr bool operator==(const Secondary&) const = default;
};
inline constexpr Secondary secondary{};

using Style = std::variant<Color, Secondary>;

/// From the top edge to the bottom edge.
struct LinearGradient {
    Color top, bottom;
    constexpr bool operator==(const LinearGradient&) const = default;
};

enum class HAlign : std::uint8_t { center, leading, trailing };
enum class VAlign : std::uint8_t { center, top, bottom, firstTextBaseline };
enum class Weight : std::uint8_t { regular, semibold, bold };
enum class Design : std::uint8_t { standard, rounded };
enum class Digits : std::uint8_t { proportional, monospaced };
enum class LineCap : std::uint8_t { butt, round };
enum class LineJoin : std::uint8_t { miter, round };

}  // namespace zelto::ui

template <>
struct zelto::records::ShortText<zelto::ui::Color> {
    static void print(const ui::Color& color, std::string& out) { out += hexText(color); }
};
template <>
struct zelto::records::ShortText<zelto::ui::LinearGradient> {
    static void print(const ui::LinearGradient& gradient, std::string& out) {
        out += hexText(gradient.top) + ".." + hexText(gradient.bottom);
    }
};

ZELTO_RECORD(zelto::ui::Color, red, green, blue, opacity);
ZELTO_RECORD(zelto::ui::Secondary);
ZELTO_RECORD(zelto::ui::LinearGradient, top, bottom);
ZELTO_NAMES(zelto::ui::HAlign, "an alignment", center, leading, trailing);
ZELTO_NAMES(zelto::ui::VAlign, "an alignment", center, top, bottom, firstTextBaseline);
ZELTO_NAMES(zelto::ui::Weight, "a font weight", regular, semibold, bold);
ZELTO_NAMES(zelto::ui::Design, "a font design", standard, rounded);
ZELTO_NAMES(zelto::ui::Digits, "a kind of digits", proportional, monospaced);
ZELTO_NAMES(zelto::ui::LineCap, "a line cap", butt, round);
ZELTO_NAMES(zelto::ui::LineJoin, "a line join", miter, round);
