#include "Common/Palette.hpp"

#include <charconv>
#include <cstdint>
#include <optional>

namespace zelto::widget::Palette {
namespace {

constexpr std::uint32_t fallback = 0x4F8DF7;

/// An unsigned 32-bit number in base 16 with one optional sign; a minus sign only before zero.
std::optional<std::uint32_t> hexNumber(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (error != std::errc() || end != text.data() + text.size() || (negative && value != 0))
        return std::nullopt;
    return value;
}

}  // namespace

ui::Color loadColor(double fraction) {
    if (fraction < 0.6) return accent;
    if (fraction < 0.85) return warning;
    return danger;
}

ui::Color colorFromHex(std::string_view hex) {
    while (hex.starts_with('#')) hex.remove_prefix(1);
    while (hex.ends_with('#')) hex.remove_suffix(1);
    const std::uint32_t value = hexNumber(hex).value_or(fallback);
    const auto component = [value](int shift) { return static_cast<double>(value >> shift & 0xFF) / 255; };
    return {component(16), component(8), component(0)};
}

}  // namespace zelto::widget::Palette
