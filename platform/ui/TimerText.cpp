#include "ui/TimerText.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zelto::ui {
namespace {

/// Whole seconds that the timer shows: rounded up before the end, down behind it.
double shownSeconds(Date end, Date now) {
    // Longer than any clock runs, and far inside what an integer holds.
    constexpr double longest = 1e15;
    const double left = end - now;
    if (std::isnan(left)) return 0;
    return std::min(left > 0 ? std::ceil(left) : std::floor(-left), longest);
}

std::string twoDigits(std::int64_t value) {
    return (value < 10 ? "0" : "") + std::to_string(value);
}

}  // namespace

std::string timerText(Date end, Date now) {
    const auto seconds = static_cast<std::int64_t>(shownSeconds(end, now));
    const std::int64_t hours = seconds / 3600, minutes = seconds / 60 % 60;
    if (hours == 0) return std::to_string(minutes) + ":" + twoDigits(seconds % 60);
    return std::to_string(hours) + ":" + twoDigits(minutes) + ":" + twoDigits(seconds % 60);
}

Date nextTimerChange(Date end, Date now) {
    const double left = end - now;
    return left > 0 ? end - (std::ceil(left) - 1) : end + (std::floor(-left) + 1);
}

}  // namespace zelto::ui
