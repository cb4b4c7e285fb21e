#include "host/Folders.hpp"

#include "foundation/EnvironmentVariable.hpp"
#include "foundation/Files.hpp"

namespace zelto::host {

Folders Folders::of(
    const std::function<std::optional<std::string>(std::string_view)>& variable,
    const std::filesystem::path& home) {
    const auto absolute = [&](std::string_view name, const std::filesystem::path& otherwise) {
        const std::filesystem::path wanted = variable(name).value_or("");
        return wanted.is_absolute() ? wanted : otherwise;
    };
    const std::filesystem::path own = absolute("HOME", home);
    const auto folder = [&](std::string_view name, const char* usual) {
        return absolute(name, own / usual) / "zelto";
    };
    return {folder("XDG_CONFIG_HOME", ".config"), folder("XDG_CACHE_HOME", ".cache")};
}

Folders Folders::current() {
    return of(environmentVariable, HomeLookup::system().home());
}

}  // namespace zelto::host
