#pragma once

#include <compare>

namespace zelto {

/// An instant: seconds since 2001-01-01T00:00:00Z, fractions kept.
struct Date {
    double sinceReference = 0;

    /// The reference date seen from 1970-01-01T00:00:00Z, in seconds.
    static constexpr double referenceSince1970 = 978307200;

    /// The current instant, from the system's real-time clock.
    static Date now();
    static constexpr Date since1970(double seconds) { return {seconds - referenceSince1970}; }

    /// The ends of the clocks: the years 1 to 9999, which every calendar here knows.
    static constexpr double earliest = -63'113'904'000, latest = 252'423'993'599;

    /// This instant, or the end of the clocks that it lies beyond.
    constexpr Date held() const {
        return {sinceReference < earliest ? earliest : sinceReference > latest ? latest : sinceReference};
    }

    constexpr double since1970() const { return sinceReference + referenceSince1970; }
    constexpr Date operator+(double seconds) const { return {sinceReference + seconds}; }
    constexpr Date operator-(double seconds) const { return {sinceReference - seconds}; }
    /// Seconds from `other` to this instant.
    constexpr double operator-(Date other) const { return sinceReference - other.sinceReference; }
    constexpr auto operator<=>(const Date&) const = default;
};

}  // namespace zelto
