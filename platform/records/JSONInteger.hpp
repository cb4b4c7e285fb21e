#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zelto::records {

/// An integer as sign and magnitude.
struct ExactInteger {
    bool negative = false;
    std::uint64_t magnitude = 0;
};

/// The value of a JSON number token when it is integral and its magnitude fits 64 bits, exactly: 80.0 and 8e1
/// are 80; 80.5 and 1.0000000000000001 are absent.
std::optional<ExactInteger> exactInteger(std::string_view token);

/// True when every digit of the token's mantissa is 0, whatever its exponent.
bool isZeroToken(std::string_view token);

}  // namespace zelto::records
