#include "platform/foundation/NumberText.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace zelto {
namespace {

constexpr double largestPlain = 9007199254740992;  // 2^53

void appendPlain(std::string& out, std::string_view digits, int exponent) {
    if (exponent < 0) {
        out += "0.";
        out.append(static_cast<std::size_t>(-exponent - 1), '0');
        out += digits;
        return;
    }
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() <= whole) {
        out += digits;
        out.append(whole - digits.size(), '0');
        return;
    }
    out += digits.substr(0, whole);
    out += '.';
    out += digits.substr(whole);
}

void appendExponent(std::string& out, std::string_view digits, int exponent) {
    out += digits[0];
    if (digits.size() > 1) {
        out += '.';
        out += digits.substr(1);
    }
    out += exponent < 0 ? "e-" : "e+";
    const int size = std::abs(exponent);
    if (size < 10) out += '0';
    out += std::to_string(size);
}

}  // namespace

void appendNumber(std::string& out, double value) {
    std::array<char, 40> text;
    const double magnitude = std::fabs(value);
    if (magnitude <= largestPlain && value == std::floor(value) && value != 0) {
        const auto end = std::to_chars(text.begin(), text.end(), static_cast<std::int64_t>(value)).ptr;
        out.append(text.begin(), end);
        return;
    }
    if (value == 0) {
        out += std::signbit(value) ? "-0" : "0";
        return;
    }

    // std::to_chars without a format would choose the shorter of both forms (1e+05), which is another rule:
    // take its digits in scientific form and lay them out here.
    const auto end = std::to_chars(text.begin(), text.end(), magnitude, std::chars_format::scientific).ptr;
    const std::string_view scientific(text.begin(), end);
    const auto e = scientific.find('e');
    std::array<char, 24> digits;
    std::size_t count = 0;
    for (const char c : scientific.substr(0, e))
        if (c != '.') digits[count++] = c;
    int exponent = 0;
    const char* exponentBegin = scientific.data() + e + 1 + (scientific[e + 1] == '+' ? 1 : 0);
    std::from_chars(exponentBegin, end, exponent);

    if (value < 0) out += '-';
    const std::string_view significant(digits.data(), count);
    if (magnitude >= 1e-4 && magnitude <= largestPlain)
        appendPlain(out, significant, exponent);
    else
        appendExponent(out, significant, exponent);
}

std::string briefNumber(double value) {
    std::array<char, 40> text;
    const auto end = std::to_chars(text.begin(), text.end(), value, std::chars_format::general, 6).ptr;
    return {text.begin(), end};
}

}  // namespace zelto
