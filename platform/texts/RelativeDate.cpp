// "há 1 hora", "ontem", "semana passada": the named relative date in wide units.

#include <cmath>
#include <cstdlib>
#include <optional>

#include <unicode/ucal.h>
#include <unicode/ureldatefmt.h>

#include "FormattingState.hpp"
#include "ICUText.hpp"
#include "texts/Formatting.hpp"

namespace zelto::texts {
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
constexpr std::size_t dayUnit = 3, hourUnit = 4, secondUnit = 6;

struct Distance {
    std::size_t unit;
    std::int32_t value;
};

/// Distances on a calendar, between wall clocks in milliseconds. From days on, a distance is one between what
/// clocks show; hours, minutes and seconds are those that have gone by, which is why those who ask for them
/// give instants instead.
class Ruler {
  public:
    explicit Ruler(UCalendar* calendar) : calendar_(calendar) {}

    /// How many of a unit lie between.
    std::int32_t count(double from, double to, std::size_t unit) const {
        UErrorCode status = U_ZERO_ERROR;
        ucal_setMillis(calendar_, from, &status);
        return ucal_getFieldDifference(calendar_, to, units[unit].field, &status);
    }
    /// The largest of the units from `first` to `last` of which at least one lies between, if any does.
    std::optional<Distance> largest(double from, double to, std::size_t first, std::size_t last) const {
        for (std::size_t unit = first; unit <= last; ++unit)
            if (const auto value = count(from, to, unit); value != 0) return Distance{unit, value};
        return std::nullopt;
    }
    double shifted(double from, Distance by) const {
        UErrorCode status = U_ZERO_ERROR;
        ucal_setMillis(calendar_, from, &status);
        ucal_add(calendar_, units[by.unit].field, by.value, &status);
        return ucal_getMillis(calendar_, &status);
    }
    /// The start of the day, week, month or year that contains `wallClock`.
    double startOf(std::size_t unit, double wallClock) const {
        UErrorCode status = U_ZERO_ERROR;
        ucal_setMillis(calendar_, wallClock, &status);
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

/// A distance between two instants in a zone.
class ZonedRuler {
  public:
    ZonedRuler(UCalendar* calendar, const TimeZone& zone) : ruler_(calendar), zone_(zone) {}

    Distance between(Date reference, Date date) const {
        Distance distance = largest(reference, date);
        if (distance.unit >= hourUnit) distance = rounded(reference, date, distance);
        if (distance.unit <= dayUnit) distance = byBoundaries(reference, date, distance.unit);
        return distance;
    }

  private:
    double wall(Date date) const { return icuText::milliseconds({zone_.wallClock(date)}); }

    /// The largest unit of which at least one lies between the instants, both in whole seconds.
    Distance largest(Date from, Date to) const {
        if (const auto days = ruler_.largest(wall(from), wall(to), 0, dayUnit)) return *days;
        return ruler_.largest(icuText::milliseconds(from), icuText::milliseconds(to), hourUnit, secondUnit)
            .value_or(Distance{secondUnit, 0});
    }
    /// Hours, minutes and seconds are rounded by the next smaller unit; if that makes a larger unit whole, it
    /// is taken.
    Distance rounded(Date reference, Date date, Distance distance) const {
        const auto shifted = [&] {
            return Date::since1970(ruler_.shifted(icuText::milliseconds(reference), distance) / 1000);
        };
        if (distance.unit != secondUnit) {
            const std::int32_t smaller = ruler_.count(
                icuText::milliseconds(shifted()), icuText::milliseconds(date), distance.unit + 1);
            if (std::abs(smaller) * 2 >= 60) distance.value += date < reference ? -1 : 1;
        }
        return largest(reference, shifted());
    }
    /// Days, weeks, months and years count the boundaries between: from the end of the reference's own unit
    /// to a date in the past, from its start to one in the future.
    Distance byBoundaries(Date reference, Date date, std::size_t unit) const {
        double from = ruler_.startOf(unit, wall(reference));
        if (date < reference) from = ruler_.shifted(from, {unit, 1}) - 1000;
        return ruler_.largest(from, wall(date), 0, secondUnit).value_or(Distance{secondUnit, 0});
    }

    Ruler ruler_;
    const TimeZone& zone_;
};

}  // namespace

std::string Formatting::relativeDate(Date date, Date reference) const {
    if (!std::isfinite(date - reference)) return {};
    reference = reference.held();
    date = reference + std::round(date.held() - reference);
    const Distance distance = ZonedRuler(state_->wallCalendar(), state_->zone).between(reference, date);

    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalURelativeDateTimeFormatterPointer format(ureldatefmt_open(
        state_->environment.locale.c_str(), nullptr, UDAT_STYLE_LONG, UDISPCTX_CAPITALIZATION_NONE, &status));
    if (U_FAILURE(status)) return {};
    return icuText::utf8(icuText::filled([&](UChar* out, std::int32_t size, UErrorCode* error) {
        return ureldatefmt_format(
            format.getAlias(), distance.value, units[distance.unit].name, out, size, error);
    }));
}

}  // namespace zelto::texts
