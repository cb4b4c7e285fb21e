#include "foundation/NumberText.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zelto {
namespace {

constexpr double largestPlain = 9007199254740992;  // 2^53

char* put(char* to, std::string_view text) {
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
}
char* putZeros(char* to, std::size_t count) {
    std::memset(to, '0', count);
    return to + count;
}

/// Digits with the point behind the first `exponent` + 1 of them.
char* putPlain(char* to, std::string_view digits, int exponent) {
    if (exponent < 0) {
        to = put(to, "0.");
        to = putZeros(to, static_cast<std::size_t>(-exponent - 1));
        return put(to, digits);
    }
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() <= whole) return putZeros(put(to, digits), whole - digits.size());
    to = put(to, digits.substr(0, whole));
    *to++ = '.';
    return put(to, digits.substr(whole));
}

char* putExponent(char* to, std::string_view digits, int exponent) {
    *to++ = digits[0];
    if (digits.size() > 1) {
        *to++ = '.';
        to = put(to, digits.substr(1));
    }
    to = put(to, exponent < 0 ? "e-" : "e+");
    const int size = std::abs(exponent);
    if (size < 10) *to++ = '0';
    return std::to_chars(to, to + 3, size).ptr;
}

/// Most numbers that people and sensors make are whole or have few decimals. With at most fifteen significant
/// digits a decimal is the only one of its length that reads back to its double, so cutting its zeros off
/// makes it the shortest. Null for other numbers.
char* putShortDecimal(char* to, double magnitude) {
    constexpr double unit = 1e6, largest = 1e15;
    constexpr int mostDecimals = 6;
    const double scaled = magnitude * unit;
    if (!(scaled < largest)) {
        if (magnitude > largestPlain || magnitude != std::floor(magnitude)) return nullptr;
        return std::to_chars(to, to + longestNumber, static_cast<std::int64_t>(magnitude)).ptr;
    }
    auto whole = static_cast<std::int64_t>(scaled + 0.5);
    // The product is off by less than one part in 2^52, so what is further from an integer need not be
    // divided.
    if (std::fabs(scaled - static_cast<double>(whole)) > scaled * 0x1p-51) return nullptr;
    if (static_cast<double>(whole) / unit != magnitude) return nullptr;
    int decimals = mostDecimals;
    for (; decimals > 0 && whole % 10 == 0; --decimals) whole /= 10;
    std::array<char, 24> text;
    const auto* end = std::to_chars(text.begin(), text.end(), whole).ptr;
    const std::string_view digits(text.data(), static_cast<std::size_t>(end - text.data()));
    return putPlain(to, digits, static_cast<int>(digits.size()) - 1 - decimals);
}

}  // namespace

char* writeNumber(char* to, double value) {
    const double magnitude = std::fabs(value);
    if (std::signbit(value)) *to++ = '-';
    if (magnitude == 0) return put(to, "0");
    if (magnitude >= 1e-4)
        if (char* end = putShortDecimal(to, magnitude)) return end;

    // std::to_chars without a format would choose the shorter of both forms (1e+05), which is another rule:
    // take its digits in scientific form and lay them out here.
    std::array<char, 40> text;
    const auto* end = std::to_chars(text.begin(), text.end(), magnitude, std::chars_format::scientific).ptr;
    // "1.2345e-07", "5e-324": one digit, perhaps a point and more, "e", a sign, two or three digits.
    const char* e = end[-4] == 'e' ? end - 4 : end - 5;
    int exponent = 0;
    std::from_chars(e + 2, end, exponent);
    if (e[1] == '-') exponent = -exponent;
    text[1] = text[0];  // in place of the point, where there is one
    const char* digits = e - text.data() > 1 ? text.data() + 1 : text.data();
    const std::string_view significant(digits, static_cast<std::size_t>(e - digits));
    return magnitude >= 1e-4 && magnitude <= largestPlain ? putPlain(to, significant, exponent)
                                                          : putExponent(to, significant, exponent);
}

void appendNumber(std::string& out, double value) {
    std::array<char, longestNumber> text;
    out.append(text.data(), writeNumber(text.data(), value));
}

std::string briefNumber(double value) {
    std::array<char, 40> text;
    const auto end = std::to_chars(text.begin(), text.end(), value, std::chars_format::general, 6).ptr;
    return {text.begin(), end};
}

}  // namespace zelto
