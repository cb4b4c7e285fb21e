#include "Common/Rounding.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace zelto::widget {
namespace {

std::int64_t saturated(double integral) {
    if (std::isnan(integral)) return 0;
    if (integral >= 0x1p63) return std::numeric_limits<std::int64_t>::max();
    if (integral < -0x1p63) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(integral);
}

}  // namespace

std::int64_t nearestInteger(double value) {
    return saturated(std::round(value));
}

std::string wholeNumber(double value) {
    std::array<char, 400> text;  // the largest double has 309 digits
    return {text.data(), std::to_chars(text.begin(), text.end(), value, std::chars_format::fixed, 0).ptr};
}

std::string roundedPercent(double fraction) {
    return std::to_string(nearestInteger(fraction * 100)) + "%";
}

std::string truncatedPercent(double fraction) {
    return std::to_string(saturated(std::trunc(fraction * 100))) + "%";
}

}  // namespace zelto::widget
