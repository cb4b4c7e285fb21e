#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zelto::texts {

/// Whose texts are wanted: a locale such as "pt_BR" and a time zone by its identifier (TimeZone::find), such
/// as "America/Sao_Paulo".
struct Environment {
    std::string locale;
    std::string timeZone;

    /// What the process's environment variables and the machine say.
    static Environment current();
    bool operator==(const Environment&) const = default;
};

/// The locale that LC_ALL, LC_TIME or LANG name, without its encoding. One that says nothing ("C", "POSIX" or
/// none) becomes Portuguese of Brazil, the language that the widgets are written in.
std::string localeOf(const std::function<std::optional<std::string>(std::string_view)>& variable);

/// True for a locale whose language the locale data knows.
bool isKnownLocale(const std::string& locale);

}  // namespace zelto::texts
