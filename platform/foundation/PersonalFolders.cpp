#include "foundation/PersonalFolders.hpp"

#include "foundation/EnvironmentVariable.hpp"
#include "foundation/Files.hpp"

namespace zelto {

PersonalFolders PersonalFolders::current() {
    return {environmentVariable, HomeLookup::system().home()};
}

std::filesystem::path PersonalFolders::folder(
    std::string_view name, const std::filesystem::path& usual) const {
    const auto absolute = [this](std::string_view wanted) -> std::optional<std::filesystem::path> {
        std::filesystem::path path = variable(wanted).value_or("");
        return path.is_absolute() ? std::optional(std::move(path)) : std::nullopt;
    };
    if (auto wanted = absolute(name)) return *std::move(wanted);
    return absolute("HOME").value_or(home) / usual;
}

}  // namespace zelto
