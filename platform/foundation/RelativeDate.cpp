// "há 1 hora", "ontem", "semana passada": the named relative date in wide units.

#include <cmath>
#include <cstdlib>

#include <unicode/ucal.h>
#include <unicode/ureldatefmt.h>

#include "platform/foundation/Formatting.hpp"
#include "platform/foundation/FormattingState.hpp"
#include "platform/foundation/ICUText.hpp"

namespace zelto {
namespace {

struct Unit {
    UCalendarDateFields field;
    URelativeDateTimeUnit name;
};
constexpr Unit units[] = {
    {UCAL_YEAR, UDAT_REL_UNIT_YEAR},
    {UCAL_MONTH, UDAT_REL_UNIT_MONTH},
    {UCAL_WEEK_OF_YEAR, UDAT_REL_UNIT_WEEK},
    {UCAL_DATE, UDAT_REL_UNIT_DAY},
    {UCAL_HOUR, UDAT_REL_UNIT_HOUR},
    {UCAL_MINUTE, UDAT_REL_UNIT_MINUTE},
    {UCAL_SECOND, UDAT_REL_UNIT_SECOND}};
constexpr std::size_t dayUnit = 3, hourUnit = 4, secondUnit = 6, unitCount = 7;

struct Distance {
    std::size_t unit;
    std::int32_t value;
};

/// Distances between instants, counted on a calendar.
class Ruler {
  public:
    explicit Ruler(UCalendar* calendar) : calendar_(calendar) {}

    /// How many of a unit lie between the instants.
    std::int32_t count(double from, double to, std::size_t unit) const {
        UErrorCode status = U_ZERO_ERROR;
        ucal_setMillis(calendar_, from, &status);
        return ucal_getFieldDifference(calendar_, to, units[unit].field, &status);
    }
    /// The largest unit of which at least one lies between the instants, both in whole seconds.
    Distance largest(double from, double to) const {
        UErrorCode status = U_ZERO_ERROR;
        ucal_setMillis(calendar_, from, &status);
        for (std::size_t unit = 0; unit < unitCount; ++unit)
            if (const auto value = ucal_getFieldDifference(calendar_, to, units[unit].field, &status);
                value != 0)
                return {unit, value};
        return {secondUnit, 0};
    }
    double shifted(double from, Distance by) const {
        UErrorCode status = U_ZERO_ERROR;
        ucal_setMillis(calendar_, from, &status);
        ucal_add(calendar_, units[by.unit].field, by.value, &status);
        return ucal_getMillis(calendar_, &status);
    }
    /// The first instant of the day, week, month or year that contains `instant`.
    double startOf(std::size_t unit, double instant) const {
        UErrorCode status = U_ZERO_ERROR;
        ucal_setMillis(calendar_, instant, &status);
        for (const auto field : {UCAL_MILLISECOND, UCAL_SECOND, UCAL_MINUTE, UCAL_HOUR_OF_DAY})
            ucal_set(calendar_, field, 0);
        switch (units[unit].field) {
            case UCAL_YEAR: ucal_set(calendar_, UCAL_DAY_OF_YEAR, 1); break;
            case UCAL_MONTH: ucal_set(calendar_, UCAL_DATE, 1); break;
            case UCAL_WEEK_OF_YEAR:
                ucal_set(calendar_, UCAL_DAY_OF_WEEK, ucal_getAttribute(calendar_, UCAL_FIRST_DAY_OF_WEEK));
                break;
            default: break;
        }
        return ucal_getMillis(calendar_, &status);
    }

  private:
    UCalendar* calendar_;
};

/// Hours, minutes and seconds are rounded by the next smaller unit; if that makes a larger unit whole, it is
/// taken.
Distance rounded(const Ruler& ruler, double reference, double date, Distance distance) {
    if (distance.unit != secondUnit) {
        const double rest = ruler.shifted(reference, distance);
        const std::int32_t smaller = ruler.count(rest, date, distance.unit + 1);
        if (std::abs(smaller) * 2 >= 60) distance.value += date < reference ? -1 : 1;
    }
    return ruler.largest(reference, ruler.shifted(reference, distance));
}

/// Days, weeks, months and years count the boundaries between: from the end of the reference's own unit to a
/// date in the past, from its start to one in the future.
Distance byBoundaries(const Ruler& ruler, double reference, double date, std::size_t unit) {
    double from = ruler.startOf(unit, reference);
    if (date < reference) from = ruler.shifted(from, {unit, 1}) - 1000;
    return ruler.largest(from, date);
}

}  // namespace

std::string Formatting::relativeDate(Date date, Date reference) const {
    const double milliseconds = std::round(date - reference) * 1000;
    if (!std::isfinite(milliseconds)) return {};
    const double from = icuText::milliseconds(reference), to = from + milliseconds;
    const Ruler ruler(state_->calendarFor(state_->environment.timeZone));
    Distance distance = ruler.largest(from, to);
    if (distance.unit >= hourUnit) distance = rounded(ruler, from, to, distance);
    if (distance.unit <= dayUnit) distance = byBoundaries(ruler, from, to, distance.unit);

    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalURelativeDateTimeFormatterPointer format(ureldatefmt_open(
        state_->environment.locale.c_str(), nullptr, UDAT_STYLE_LONG, UDISPCTX_CAPITALIZATION_NONE, &status));
    if (U_FAILURE(status)) return {};
    return icuText::utf8(icuText::filled([&](UChar* out, std::int32_t size, UErrorCode* error) {
        return ureldatefmt_format(
            format.getAlias(), distance.value, units[distance.unit].name, out, size, error);
    }));
}

}  // namespace zelto
