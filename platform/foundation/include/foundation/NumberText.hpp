#pragma once

#include <cstddef>
#include <string>

namespace zelto {

/// Appends a finite double as JSON text: the shortest digits that read back to the same value, plain from
/// 1e-4 up to 2^53, otherwise with an exponent of at least two digits (1e+16, 1e-05). No trailing ".0".
void appendNumber(std::string& out, double value);

/// The same into a buffer with room for `longestNumber` characters; the end of what was written.
char* writeNumber(char* to, double value);
inline constexpr std::size_t longestNumber = 32;

/// The same for people: at most six significant digits.
std::string briefNumber(double value);

}  // namespace zelto
