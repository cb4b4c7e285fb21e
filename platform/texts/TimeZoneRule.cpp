#include "TimeZoneRule.hpp"

#include <chrono>
#include <cmath>
#include <cstdlib>

namespace zelto::texts {
namespace {

using Change = TimeZoneRule::Change;

constexpr int hour = 3600;         // seconds
constexpr double day = 24 * hour;  // seconds

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Takes pieces off the front of a text.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    bool isAtEnd() const { return rest_.empty(); }
    bool take(char c) {
        if (!rest_.starts_with(c)) return false;
        rest_.remove_prefix(1);
        return true;
    }
    /// Three letters or more, or three characters or more between angle brackets.
    std::optional<std::string> takeAbbreviation() {
        const bool isQuoted = take('<');
        std::size_t length = 0;
        while (length < rest_.size() && isPartOfName(rest_[length], isQuoted)) ++length;
        std::string name(rest_.substr(0, length));
        rest_.remove_prefix(length);
        return length >= 3 && (!isQuoted || take('>')) ? std::optional(std::move(name)) : std::nullopt;
    }
    std::optional<int> takeNumber(int least, int most) {
        int value = 0;
        std::size_t digits = 0;
        while (digits < 3 && digits < rest_.size() && isDigit(rest_[digits]))
            value = value * 10 + (rest_[digits++] - '0');
        rest_.remove_prefix(digits);
        return digits == 0 || value < least || value > most ? std::nullopt : std::optional(value);
    }
    /// [+-]hh[:mm[:ss]], in seconds.
    std::optional<int> takeTime(int mostHours) {
        const int sign = take('-') ? -1 : 1;
        if (sign > 0) take('+');
        const auto hours = takeNumber(0, mostHours);
        if (!hours) return std::nullopt;
        int seconds = *hours * hour;
        for (const int unit : {60, 1}) {
            if (!take(':')) break;
            const auto part = takeNumber(0, 59);
            if (!part) return std::nullopt;
            seconds += *part * unit;
        }
        return sign * seconds;
    }
    /// Mm.w.d, Jn or n, with /time or without.
    std::optional<Change> takeChange() {
        Change change;
        std::optional<int> month = 1, week = 1, number;
        if (take('M')) {
            month = takeNumber(1, 12);
            week = take('.') ? takeNumber(1, 5) : std::nullopt;
            number = take('.') ? takeNumber(0, 6) : std::nullopt;
        } else {
            change.kind = take('J') ? Change::Day::julian : Change::Day::zeroBased;
            number = takeNumber(change.kind == Change::Day::julian ? 1 : 0, 365);
        }
        if (!month || !week || !number) return std::nullopt;
        change.month = *month;
        change.week = *week;
        change.day = *number;
        if (take('/')) {
            const auto time = takeTime(167);
            if (!time) return std::nullopt;
            change.time = *time;
        }
        return change;
    }

  private:
    static bool isPartOfName(char c, bool isQuoted) {
        return isLetter(c) || (isQuoted && (isDigit(c) || c == '+' || c == '-'));
    }

    std::string_view rest_;
};

/// The midnight that begins the day of a change, in seconds since 1970 on the zone's clocks.
double midnight(const Change& change, std::chrono::year year) {
    using namespace std::chrono;
    const auto newYear = sys_days(year / January / 1);
    const auto since1970 = [](sys_days date) {
        return static_cast<double>(date.time_since_epoch().count()) * day;
    };
    switch (change.kind) {
        case Change::Day::zeroBased: return since1970(newYear + days(change.day));
        case Change::Day::julian:
            return since1970(newYear + days(change.day - (year.is_leap() && change.day >= 60 ? 0 : 1)));
        case Change::Day::month: break;
    }
    const auto month = year / std::chrono::month(static_cast<unsigned>(change.month));
    const weekday wanted(static_cast<unsigned>(change.day));
    if (change.week == 5) return since1970(sys_days(month / wanted[last]));
    return since1970(sys_days(month / wanted[static_cast<unsigned>(change.week)]));
}

}  // namespace

std::optional<TimeZoneRule> TimeZoneRule::parse(std::string_view text) {
    // Today's rule of the United States. Where no dates are given the C library takes it too, or, where the
    // zone folder has a file called posixrules, that zone's history.
    constexpr std::string_view usual = "M3.2.0,M11.1.0";

    Scanner scanner(text);
    TimeZoneRule rule;
    const auto abbreviation = scanner.takeAbbreviation();
    if (!abbreviation) return std::nullopt;
    rule.abbreviation = *abbreviation;
    const auto standard = scanner.takeTime(24);
    if (!standard) return std::nullopt;
    rule.standard = -*standard;
    if (scanner.isAtEnd()) return rule;

    if (!scanner.takeAbbreviation()) return std::nullopt;
    bool hasDates = scanner.take(',');
    std::optional<int> west = *standard - hour;
    if (!hasDates && !scanner.isAtEnd()) {
        west = scanner.takeTime(24);
        hasDates = scanner.take(',');
    }
    Scanner dates = hasDates && !scanner.isAtEnd() ? scanner : Scanner(scanner.isAtEnd() ? usual : "x");
    const auto begin = dates.takeChange();
    const auto end = dates.take(',') ? dates.takeChange() : std::nullopt;
    if (!west || !begin || !end || !dates.isAtEnd()) return std::nullopt;
    rule.daylight = Daylight{-*west, *begin, *end};
    return rule;
}

int TimeZoneRule::offset(double instant) const {
    using namespace std::chrono;
    if (!daylight) return standard;
    const auto today = sys_days(days(static_cast<int>(std::floor((instant + standard) / day))));
    const auto year = year_month_day(today).year();
    const double begin = midnight(daylight->begin, year) + daylight->begin.time - standard;
    const double end = midnight(daylight->end, year) + daylight->end.time - daylight->offset;
    const bool isDaylight =
        begin < end ? instant >= begin && instant < end : instant >= begin || instant < end;
    return isDaylight ? daylight->offset : standard;
}

std::optional<std::string> TimeZoneRule::nameOfWholeHours() const {
    if (daylight || standard % hour != 0) return std::nullopt;
    if (standard == 0) return "Etc/GMT";
    return "Etc/GMT" + std::string(standard < 0 ? "+" : "-") + std::to_string(std::abs(standard) / hour);
}

}  // namespace zelto::texts
