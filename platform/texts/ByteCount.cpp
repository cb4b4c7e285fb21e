#include "ByteCount.hpp"

#include <array>

namespace zelto::texts {
namespace {

struct Unit {
    std::string_view name;
    std::uint64_t size;
    int digits;
};
constexpr std::array units{
    Unit{"KB", 1'000, 0},
    Unit{"MB", 1'000'000, 1},
    Unit{"GB", 1'000'000'000, 2},
    Unit{"TB", 1'000'000'000'000, 2},
    Unit{"PB", 1'000'000'000'000'000, 2},
    Unit{"EB", 1'000'000'000'000'000'000, 2}};

constexpr std::uint64_t powerOfTen(int exponent) {
    return exponent == 0 ? 1 : 10 * powerOfTen(exponent - 1);
}

/// bytes / unit in steps of the unit's last digit, halves away from zero.
std::uint64_t inLastDigits(std::uint64_t bytes, const Unit& unit) {
    const std::uint64_t step = unit.size / powerOfTen(unit.digits);
    return bytes / step + (bytes % step >= step - bytes % step ? 1 : 0);
}

std::string decimal(std::uint64_t scaled, int digits) {
    std::string text = std::to_string(scaled);
    if (digits == 0) return text;
    const auto places = static_cast<std::size_t>(digits);
    if (text.size() <= places) text.insert(0, places + 1 - text.size(), '0');
    text.insert(text.size() - places, 1, '.');
    while (text.back() == '0') text.pop_back();
    if (text.back() == '.') text.pop_back();
    return text;
}

}  // namespace

ByteCount ByteCount::of(std::int64_t bytes) {
    const bool negative = bytes < 0;
    const std::uint64_t magnitude =
        negative ? std::uint64_t{0} - static_cast<std::uint64_t>(bytes) : static_cast<std::uint64_t>(bytes);
    const std::string sign = negative ? "-" : "";
    if (magnitude < 1000) return {sign + std::to_string(magnitude), magnitude == 1 ? "byte" : "bytes"};
    for (const Unit& unit : units) {
        const std::uint64_t scaled = inLastDigits(magnitude, unit);
        if (scaled < 1000 * powerOfTen(unit.digits) || &unit == &units.back())
            return {sign + decimal(scaled, unit.digits), unit.name};
    }
    return {};  // the last unit takes all that is left
}

}  // namespace zelto::texts
