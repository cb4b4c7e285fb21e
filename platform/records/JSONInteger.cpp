#include "JSONInteger.hpp"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>

namespace zelto::records {
namespace {

std::string_view mantissa(std::string_view token) {
    return token.substr(0, token.find_first_of("eE"));
}

/// The exponent behind "e", held at a size that no mantissa makes up for.
std::int64_t exponentOf(std::string_view token) {
    const auto e = token.find_first_of("eE");
    if (e == std::string_view::npos) return 0;
    std::string_view text = token.substr(e + 1);
    if (text.starts_with('+')) text.remove_prefix(1);
    std::int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    constexpr std::int64_t bound = std::numeric_limits<std::int64_t>::max() / 4;
    if (result.ec == std::errc::result_out_of_range) return text.starts_with('-') ? -bound : bound;
    return std::clamp(value, -bound, bound);
}

}  // namespace

std::optional<ExactInteger> exactInteger(std::string_view token) {
    ExactInteger out;
    if (token.starts_with('-')) {
        out.negative = true;
        token.remove_prefix(1);
    }
    std::string digits;
    std::int64_t exponent = exponentOf(token);
    bool fraction = false;
    for (const char c : mantissa(token)) {
        if (c == '.') {
            fraction = true;
        } else {
            if (fraction) --exponent;
            if (!digits.empty() || c != '0') digits += c;
        }
    }
    while (!digits.empty() && digits.back() == '0') {
        digits.pop_back();
        ++exponent;
    }
    if (digits.empty()) return ExactInteger{};
    constexpr std::int64_t mostDigits = std::numeric_limits<std::uint64_t>::digits10 + 1;
    if (exponent < 0 || exponent > mostDigits || std::ssize(digits) + exponent > mostDigits)
        return std::nullopt;
    digits.append(static_cast<std::size_t>(exponent), '0');
    if (std::from_chars(digits.data(), digits.data() + digits.size(), out.magnitude).ec != std::errc())
        return std::nullopt;
    return out;
}

bool isZeroToken(std::string_view token) {
    return mantissa(token).find_first_of("123456789") == std::string_view::npos;
}

}  // namespace zelto::records
