#pragma once

#include <cstdint>
#include <string>

namespace zelto::widget {

/// The nearest integer, halves away from zero. Not a number counts as 0; beyond 64 bits the nearest end is
/// taken.
std::int64_t nearestInteger(double value);

/// A number without decimals, as C formats it with "%.0f".
std::string wholeNumber(double value);

/// A fraction in percent as a ring shows it: rounded, halves away from zero ("73%").
std::string roundedPercent(double fraction);

/// A fraction in percent as a small label shows it: cut toward zero (0.999 is "99%").
std::string truncatedPercent(double fraction);

}  // namespace zelto::widget
