#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelto::texts {

/// A time zone spelled out, as the variable TZ may hold it and as zone files end: "EST5EDT,M3.2.0,M11.1.0",
/// "<-03>3". Its abbreviations are of no interest here. (POSIX.1, "Other Environment Variables", with the
/// hours beyond a day of RFC 8536.)
struct TimeZoneRule {
    /// A day of every year and a time on its clocks.
    struct Change {
        enum class Day {
            month,     // the `week`th (5: the last) `day` (0: Sunday) of `month`
            julian,    // `day` from 1, 29 February never counted
            zeroBased  // `day` from 0, 29 February counted
        };
        Day kind = Day::month;
        int month = 1, week = 1, day = 0;
        int time = 2 * 3600;  // seconds after midnight
    };
    struct Daylight {
        int offset;  // seconds east of UTC
        Change begin, end;
    };

    int standard = 0;  // seconds east of UTC
    /// Of the standard time: "CET", "-03".
    std::string abbreviation = {};
    std::optional<Daylight> daylight = {};

    static std::optional<TimeZoneRule> parse(std::string_view text);

    /// Seconds east of UTC at an instant, in seconds since 1970.
    int offset(double instant) const;
    /// "Etc/GMT+3" for three hours west of UTC all the year; absent for other rules.
    std::optional<std::string> nameOfWholeHours() const;
};

}  // namespace zelto::texts
