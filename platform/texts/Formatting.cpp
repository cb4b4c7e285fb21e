#include "texts/Formatting.hpp"

#include <cmath>
#include <map>
#include <mutex>
#include <utility>

#include <unicode/udatpg.h>

#include "ByteCount.hpp"
#include "FormattingState.hpp"
#include "ICUText.hpp"
#include "TimeZoneRule.hpp"

namespace zelto::texts {
namespace {

using icuText::filled;
using icuText::utf8;

/// Of everything that ICU is asked for.
constexpr const UChar* wallZone = u"UTC";

constexpr double day = 86'400;  // seconds

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

/// A locale's own pattern for a skeleton; empty without one. Kept for the process's life, since making the
/// generator costs more than all else that a formatter does, and there are few locales and skeletons.
std::u16string patternFor(const std::string& locale, const std::u16string& skeleton) {
    static std::mutex mutex;
    static std::map<std::pair<std::string, std::u16string>, std::u16string> patterns;
    constexpr std::size_t mostPatterns = 64;
    const std::lock_guard lock(mutex);
    if (const auto found = patterns.find({locale, skeleton}); found != patterns.end()) return found->second;
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUDateTimePatternGeneratorPointer generator(udatpg_open(locale.c_str(), &status));
    if (U_FAILURE(status)) return {};
    auto pattern = filled([&](UChar* out, std::int32_t size, UErrorCode* error) {
        return udatpg_getBestPatternWithOptions(
            generator.getAlias(),
            skeleton.data(),
            length(skeleton),
            UDATPG_MATCH_ALL_FIELDS_LENGTH,
            out,
            size,
            error);
    });
    // Whoever asks for ever new locales pays for each.
    if (patterns.size() == mostPatterns) patterns.clear();
    return patterns[{locale, skeleton}] = std::move(pattern);
}

}  // namespace

TimeZone Formatting::State::zoneNamed(const std::string& name) const {
    if (name != environment.timeZone && isKnownTimeZone(name))
        if (auto found = TimeZone::find(name)) return *std::move(found);
    return zone;
}

UCalendar* Formatting::State::wallCalendar() {
    if (calendar.isNull()) {
        UErrorCode status = U_ZERO_ERROR;
        calendar.adoptInstead(ucal_open(wallZone, -1, environment.locale.c_str(), UCAL_DEFAULT, &status));
    }
    return calendar.getAlias();
}

std::string Formatting::State::format(UDateFormat* format, double wallClock) const {
    if (!format) return {};
    return utf8(filled([&](UChar* out, std::int32_t size, UErrorCode* status) {
        return udat_format(format, icuText::milliseconds({wallClock}), out, size, nullptr, status);
    }));
}

std::string Formatting::State::bySkeleton(const char16_t* skeleton, Date date) {
    if (!std::isfinite(date.sinceReference)) return {};
    const std::u16string fields = skeleton;
    auto& kept = skeletons[utf8(fields)];
    if (kept.isNull()) {
        UErrorCode status = U_ZERO_ERROR;
        const std::u16string pattern = patternFor(environment.locale, fields);
        if (pattern.empty()) return {};
        kept.adoptInstead(udat_open(
            UDAT_PATTERN,
            UDAT_PATTERN,
            environment.locale.c_str(),
            wallZone,
            -1,
            pattern.data(),
            length(pattern),
            &status));
    }
    return format(kept.getAlias(), zone.wallClock(date));
}

Formatting::Formatting(Environment environment) : state_(std::make_unique<State>()) {
    state_->environment = std::move(environment);
    state_->zone = TimeZone::find(state_->environment.timeZone).value_or(TimeZone::utc());
}
Formatting::~Formatting() = default;
Formatting::Formatting(Formatting&&) noexcept = default;
Formatting& Formatting::operator=(Formatting&&) noexcept = default;

const Environment& Formatting::environment() const {
    return state_->environment;
}

std::optional<std::string> Formatting::namelessZone() const {
    if (isKnownTimeZone(state_->environment.timeZone)) return std::nullopt;
    const auto rule = TimeZoneRule::parse(state_->environment.timeZone);
    return rule ? rule->abbreviation : "";
}

std::string Formatting::shortTime(Date date) const {
    return shortTime(date, state_->environment.timeZone);
}

std::string Formatting::shortTime(Date date, const std::string& timeZone) const {
    if (!std::isfinite(date.sinceReference)) return {};
    auto& kept = state_->time;
    if (kept.isNull()) {
        UErrorCode status = U_ZERO_ERROR;
        kept.adoptInstead(udat_open(
            UDAT_SHORT, UDAT_NONE, state_->environment.locale.c_str(), wallZone, -1, nullptr, 0, &status));
    }
    return state_->format(kept.getAlias(), state_->zoneNamed(timeZone).wallClock(date));
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
    UCalendar* calendar = state_->wallCalendar();
    UErrorCode status = U_ZERO_ERROR;
    ucal_setMillis(calendar, icuText::milliseconds({state_->zone.wallClock(date)}), &status);
    return ucal_get(calendar, UCAL_DATE, &status);
}

std::optional<int> Formatting::hour(Date date, const std::string& timeZone) const {
    if (!std::isfinite(date.sinceReference)) return std::nullopt;
    const double wallClock = state_->zoneNamed(timeZone).wallClock(date);
    return static_cast<int>((wallClock - std::floor(wallClock / day) * day) / 3600);
}

bool Formatting::isSameDay(Date a, Date b) const {
    const auto dayOf = [this](Date date) { return std::floor(state_->zone.wallClock(date) / day); };
    return dayOf(a) == dayOf(b);
}

Date Formatting::nextDay(Date date) const {
    return state_->zone.instant(state_->zone.wallClock(date) + day);
}

std::optional<Date> Formatting::startOfMinute(Date date) {
    if (!std::isfinite(date.sinceReference)) return std::nullopt;
    // Every zone of today is a whole number of minutes away from UTC.
    return Date{std::floor(date.sinceReference / 60) * 60};
}

}  // namespace zelto::texts
