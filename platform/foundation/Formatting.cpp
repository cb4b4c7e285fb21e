#include "platform/foundation/Formatting.hpp"

#include <cmath>

#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/unum.h>

#include "platform/foundation/ByteCount.hpp"
#include "platform/foundation/ICUText.hpp"

namespace zelto {
namespace {

using icuText::filled;
using icuText::utf16;
using icuText::utf8;

/// Languages in which a byte count of nothing is a word.
bool spellsZero(const std::string& locale) {
    for (const std::string language : {"pt", "en"})
        if (locale == language || locale.starts_with(language + "_") || locale.starts_with(language + "-"))
            return true;
    return false;
}

}  // namespace

/// ICU's objects for the environment, each opened when it is first asked for: opening is what costs.
struct Formatting::State {
    Environment environment;
    icu::LocalUDateFormatPointer shortTime;
    icu::LocalUNumberFormatPointer number;
};

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
    auto& format = state_->shortTime;
    if (format.isNull()) {
        const auto zone = utf16(state_->environment.timeZone);
        UErrorCode status = U_ZERO_ERROR;
        format.adoptInstead(udat_open(
            UDAT_SHORT,
            UDAT_NONE,
            state_->environment.locale.c_str(),
            zone.data(),
            static_cast<std::int32_t>(zone.size()),
            nullptr,
            0,
            &status));
        if (U_FAILURE(status)) return {};
    }
    return utf8(filled([&](UChar* out, std::int32_t size, UErrorCode* status) {
        return udat_format(format.getAlias(), icuText::milliseconds(date), out, size, nullptr, status);
    }));
}

std::optional<Date> Formatting::startOfMinute(Date date) {
    if (!std::isfinite(date.sinceReference)) return std::nullopt;
    // Every zone of today is a whole number of minutes away from UTC.
    return Date{std::floor(date.sinceReference / 60) * 60};
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

}  // namespace zelto
