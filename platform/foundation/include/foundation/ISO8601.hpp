#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/Date.hpp"

namespace zelto {

/// "2026-03-11T14:05:00-03:00": date, time with or without seconds and a fraction, and an offset or "Z".
std::optional<Date> parseISO8601(std::string_view text);

/// In UTC, with milliseconds when there are any: "2026-03-11T17:05:00Z". A date beyond the years 1 to 9999 is
/// told in seconds since 2001.
std::string iso8601(Date date);

}  // namespace zelto
