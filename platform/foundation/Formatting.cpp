#include "platform/foundation/Formatting.hpp"

#include <cmath>

#include <unicode/udatpg.h>

#include "platform/foundation/ByteCount.hpp"
#include "platform/foundation/FormattingState.hpp"
#include "platform/foundation/ICUText.hpp"

namespace zelto {
namespace {

using icuText::filled;
using icuText::utf16;
using icuText::utf8;

std::int32_t length(const std::u16string& text) {
    return static_cast<std::int32_t>(text.size());
}

/// Languages in which a byte count of nothing is a word.
bool spellsZero(const std::string& locale) {
    for (const std::string language : {"pt", "en"})
        if (locale == language || locale.starts_with(language + "_") || locale.starts_with(language + "-"))
            return true;
    return false;
}

}  // namespace

const std::string& Formatting::State::knownZone(const std::string& identifier) const {
    return isKnownTimeZone(identifier) ? identifier : environment.timeZone;
}

UCalendar* Formatting::State::calendarFor(const std::string& timeZone) {
    auto& calendar = calendars[timeZone];
    if (calendar.isNull()) {
        const auto zone = utf16(timeZone);
        UErrorCode status = U_ZERO_ERROR;
        calendar.adoptInstead(
            ucal_open(zone.data(), length(zone), environment.locale.c_str(), UCAL_DEFAULT, &status));
    }
    return calendar.getAlias();
}

std::string Formatting::State::format(UDateFormat* format, Date date) const {
    if (!format || !std::isfinite(date.sinceReference)) return {};
    return utf8(filled([&](UChar* out, std::int32_t size, UErrorCode* status) {
        return udat_format(format, icuText::milliseconds(date), out, size, nullptr, status);
    }));
}

std::string Formatting::State::bySkeleton(const char16_t* skeleton, Date date) {
    const std::u16string fields = skeleton;
    auto& kept = skeletons[utf8(fields)];
    if (kept.isNull()) {
        UErrorCode status = U_ZERO_ERROR;
        const icu::LocalUDateTimePatternGeneratorPointer generator(
            udatpg_open(environment.locale.c_str(), &status));
        if (U_FAILURE(status)) return {};
        const auto pattern = filled([&](UChar* out, std::int32_t size, UErrorCode* error) {
            return udatpg_getBestPatternWithOptions(
                generator.getAlias(),
                fields.data(),
                length(fields),
                UDATPG_MATCH_ALL_FIELDS_LENGTH,
                out,
                size,
                error);
        });
        const auto zone = utf16(environment.timeZone);
        kept.adoptInstead(udat_open(
            UDAT_PATTERN,
            UDAT_PATTERN,
            environment.locale.c_str(),
            zone.data(),
            length(zone),
            pattern.data(),
            length(pattern),
            &status));
    }
    return format(kept.getAlias(), date);
}

Formatting::Formatting(Environment environment) : state_(std::make_unique<State>()) {
    state_->environment = std::move(environment);
}
Formatting::~Formatting() = default;
Formatting::Formatting(Formatting&&) noexcept = default;
Formatting& Formatting::operator=(Formatting&&) noexcept = default;

const Environment& Formatting::environment() const {
    return state_->environment;
}

std::string Formatting::shortTime(Date date) const {
    return shortTime(date, state_->environment.timeZone);
}

std::string Formatting::shortTime(Date date, const std::string& timeZone) const {
    const std::string& known = state_->knownZone(timeZone);
    auto& kept = state_->shortTimes[known];
    if (kept.isNull()) {
        const auto zone = utf16(known);
        UErrorCode status = U_ZERO_ERROR;
        kept.adoptInstead(udat_open(
            UDAT_SHORT,
            UDAT_NONE,
            state_->environment.locale.c_str(),
            zone.data(),
            length(zone),
            nullptr,
            0,
            &status));
    }
    return state_->format(kept.getAlias(), date);
}

std::string Formatting::monthAndWeekday(Date date) const {
    return state_->bySkeleton(u"MMMMEEEE", date);
}
std::string Formatting::weekdayAndDay(Date date) const {
    return state_->bySkeleton(u"dEEE", date);
}

std::string Formatting::byteCount(std::int64_t bytes) const {
    if (bytes == 0 && spellsZero(state_->environment.locale)) return "Zero KB";
    auto& format = state_->number;
    if (format.isNull()) {
        UErrorCode status = U_ZERO_ERROR;
        format.adoptInstead(
            unum_open(UNUM_DECIMAL, nullptr, 0, state_->environment.locale.c_str(), nullptr, &status));
        if (U_FAILURE(status)) return {};
    }
    const ByteCount count = bytes == 0 ? ByteCount{"0", "KB"} : ByteCount::of(bytes);
    const std::string number = utf8(filled([&](UChar* out, std::int32_t size, UErrorCode* status) {
        return unum_formatDecimal(
            format.getAlias(),
            count.number.data(),
            static_cast<std::int32_t>(count.number.size()),
            out,
            size,
            nullptr,
            status);
    }));
    return number + " " + std::string(count.unit);
}

int Formatting::dayOfMonth(Date date) const {
    UCalendar* calendar = state_->calendarFor(state_->environment.timeZone);
    UErrorCode status = U_ZERO_ERROR;
    ucal_setMillis(calendar, icuText::milliseconds(date), &status);
    return ucal_get(calendar, UCAL_DATE, &status);
}

std::optional<int> Formatting::hour(Date date, const std::string& timeZone) const {
    UCalendar* calendar = state_->calendarFor(state_->knownZone(timeZone));
    if (!calendar || !std::isfinite(date.sinceReference)) return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    ucal_setMillis(calendar, icuText::milliseconds(date), &status);
    const int hour = ucal_get(calendar, UCAL_HOUR_OF_DAY, &status);
    return U_FAILURE(status) ? std::nullopt : std::optional(hour);
}

bool Formatting::isSameDay(Date a, Date b) const {
    UCalendar* calendar = state_->calendarFor(state_->environment.timeZone);
    UErrorCode status = U_ZERO_ERROR;
    const auto dayOf = [&](Date date) {
        ucal_setMillis(calendar, icuText::milliseconds(date), &status);
        return ucal_get(calendar, UCAL_JULIAN_DAY, &status);
    };
    return dayOf(a) == dayOf(b);
}

Date Formatting::nextDay(Date date) const {
    UCalendar* calendar = state_->calendarFor(state_->environment.timeZone);
    UErrorCode status = U_ZERO_ERROR;
    ucal_setMillis(calendar, icuText::milliseconds(date), &status);
    ucal_add(calendar, UCAL_DATE, 1, &status);
    return Date::since1970(ucal_getMillis(calendar, &status) / 1000);
}

std::optional<Date> Formatting::startOfMinute(Date date) {
    if (!std::isfinite(date.sinceReference)) return std::nullopt;
    // Every zone of today is a whole number of minutes away from UTC.
    return Date{std::floor(date.sinceReference / 60) * 60};
}

}  // namespace zelto
