#include "foundation/ISO8601.hpp"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "foundation/NumberText.hpp"

namespace zelto {
namespace {

using namespace std::chrono;

/// Takes exactly `digits` digits off the front.
std::optional<int> take(std::string_view& text, std::size_t digits) {
    if (text.size() < digits) return std::nullopt;
    int value = 0;
    for (const char c : text.substr(0, digits)) {
        if (c < '0' || c > '9') return std::nullopt;
        value = 10 * value + (c - '0');
    }
    text.remove_prefix(digits);
    return value;
}

bool takeCharacter(std::string_view& text, char c) {
    if (!text.starts_with(c)) return false;
    text.remove_prefix(1);
    return true;
}

/// ".25" as a fraction of a second; nothing there is 0.
std::optional<double> takeFraction(std::string_view& text) {
    if (!takeCharacter(text, '.')) return 0;
    const auto digits = text.substr(0, text.find_first_not_of("0123456789"));
    if (digits.empty() || digits.size() > 15) return std::nullopt;
    text.remove_prefix(digits.size());
    double value = 0, unit = 1;
    for (const char c : digits) value += (c - '0') * (unit /= 10);
    return value;
}

/// "Z", "+05:30", "-0300" or "-03", in seconds east of UTC.
std::optional<int> takeOffset(std::string_view& text) {
    if (takeCharacter(text, 'Z') || takeCharacter(text, 'z')) return 0;
    const int sign = text.starts_with('-') ? -1 : 1;
    if (!takeCharacter(text, '-') && !takeCharacter(text, '+')) return std::nullopt;
    const auto hours = take(text, 2);
    takeCharacter(text, ':');
    const auto minutes = text.empty() ? std::optional(0) : take(text, 2);
    if (!hours || !minutes || *hours > 23 || *minutes > 59) return std::nullopt;
    return sign * (*hours * 3600 + *minutes * 60);
}

}  // namespace

std::optional<Date> parseISO8601(std::string_view text) {
    const auto year_ = take(text, 4);
    if (!year_ || !takeCharacter(text, '-')) return std::nullopt;
    const auto month_ = take(text, 2);
    if (!month_ || !takeCharacter(text, '-')) return std::nullopt;
    const auto day_ = take(text, 2);
    if (!day_ || !(takeCharacter(text, 'T') || takeCharacter(text, ' '))) return std::nullopt;
    const auto hours = take(text, 2);
    if (!hours || !takeCharacter(text, ':')) return std::nullopt;
    const auto minutes = take(text, 2);
    std::optional<int> seconds = 0;
    std::optional<double> fraction = 0;
    if (takeCharacter(text, ':')) {
        seconds = take(text, 2);
        fraction = takeFraction(text);
    }
    const auto offset = takeOffset(text);
    const year_month_day date{
        year(*year_), month(static_cast<unsigned>(*month_)), day(static_cast<unsigned>(*day_))};
    if (!minutes || !seconds || !fraction || !offset || !text.empty() || !date.ok() || *hours > 23 ||
        *minutes > 59 || *seconds > 59)
        return std::nullopt;
    const auto days = sys_days(date).time_since_epoch().count();
    return Date::since1970(
        static_cast<double>(days) * 86400 + *hours * 3600 + *minutes * 60 + *seconds - *offset + *fraction);
}

std::string iso8601(Date date) {
    const double milliseconds_ = std::round(date.since1970() * 1000);
    const bool inRange = milliseconds_ >= -62135596800000.0 && milliseconds_ < 253402300800000.0;
    if (!inRange) {
        std::string out;
        if (!std::isfinite(date.sinceReference)) return "never";
        appendNumber(out, date.sinceReference);
        return out + " s since 2001";
    }
    const sys_time<milliseconds> instant{milliseconds(static_cast<std::int64_t>(milliseconds_))};
    const auto midnight = floor<days>(instant);
    const year_month_day day_(midnight);
    const hh_mm_ss time(instant - midnight);
    std::array<char, 40> buffer;
    std::snprintf(
        buffer.data(),
        buffer.size(),
        "%04d-%02u-%02uT%02d:%02d:%02d",
        int{day_.year()},
        unsigned{day_.month()},
        unsigned{day_.day()},
        static_cast<int>(time.hours().count()),
        static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()));
    std::string out = buffer.data();
    if (time.subseconds().count() != 0) {
        std::snprintf(buffer.data(), buffer.size(), ".%03d", static_cast<int>(time.subseconds().count()));
        out += buffer.data();
    }
    return out + "Z";
}

}  // namespace zelto
