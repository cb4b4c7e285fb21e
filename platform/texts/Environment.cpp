#include "texts/Environment.hpp"

#include <array>
#include <set>

#include <unicode/uloc.h>

#include "foundation/EnvironmentVariable.hpp"
#include "texts/TimeZone.hpp"

namespace zelto::texts {

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
    return {localeOf(environmentVariable), identifierOf({.variable = environmentVariable("TZ")})};
}

bool isKnownLocale(const std::string& locale) {
    std::array<char, ULOC_LANG_CAPACITY> language{};
    UErrorCode status = U_ZERO_ERROR;
    uloc_getLanguage(locale.c_str(), language.data(), language.size(), &status);
    // A language that fills the buffer is no failure to ICU, but is not terminated either.
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING || language[0] == '\0') return false;
    static const std::set<std::string, std::less<>> known = [] {
        std::set<std::string, std::less<>> out;
        for (std::int32_t i = 0; i < uloc_countAvailable(); ++i) out.emplace(uloc_getAvailable(i));
        return out;
    }();
    return known.contains(std::string_view(language.data()));
}

}  // namespace zelto::texts
