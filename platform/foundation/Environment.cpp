#include "platform/foundation/Environment.hpp"

#include <array>
#include <cstdlib>

#include <unicode/ucal.h>
#include <unicode/uloc.h>

#include "platform/foundation/ICUText.hpp"

namespace zelto {

std::string localeOf(const std::function<std::optional<std::string>(std::string_view)>& variable) {
    for (const std::string_view name : {"LC_ALL", "LC_TIME", "LANG"}) {
        const auto value = variable(name);
        if (!value || value->empty()) continue;
        std::string locale = value->substr(0, value->find_first_of(".@"));
        if (locale == "C" || locale == "POSIX") break;
        return locale;
    }
    return "pt_BR";
}

Environment Environment::current() {
    const auto variable = [](std::string_view name) -> std::optional<std::string> {
        const char* value = std::getenv(std::string(name).c_str());
        if (!value) return std::nullopt;
        return value;
    };
    const auto zone = icuText::filled([](UChar* out, std::int32_t size, UErrorCode* status) {
        return ucal_getHostTimeZone(out, size, status);
    });
    const std::string identifier = icuText::utf8(zone);
    return {localeOf(variable), isKnownTimeZone(identifier) ? identifier : "UTC"};
}

bool isKnownTimeZone(const std::string& identifier) {
    if (identifier.empty()) return false;
    const auto id = icuText::utf16(identifier);
    UBool isSystemID = false;
    const auto canonical = icuText::filled([&](UChar* out, std::int32_t size, UErrorCode* status) {
        return ucal_getCanonicalTimeZoneID(
            id.data(), static_cast<std::int32_t>(id.size()), out, size, &isSystemID, status);
    });
    return !canonical.empty() && isSystemID && identifier != "Etc/Unknown";
}

bool isKnownLocale(const std::string& locale) {
    std::array<char, 16> language{};
    UErrorCode status = U_ZERO_ERROR;
    uloc_getLanguage(locale.c_str(), language.data(), language.size(), &status);
    if (U_FAILURE(status) || language[0] == '\0') return false;
    for (std::int32_t i = 0; i < uloc_countAvailable(); ++i) {
        if (std::string_view(uloc_getAvailable(i)) == language.data()) return true;
    }
    return false;
}

}  // namespace zelto
