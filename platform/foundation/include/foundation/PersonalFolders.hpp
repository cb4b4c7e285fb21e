#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

/// Where a program keeps what is a person's, by the freedesktop base-directory variables.
struct PersonalFolders {
    /// A variable of the environment.
    std::function<std::optional<std::string>(std::string_view)> variable;
    /// The home of those who have no HOME that is an absolute path.
    std::filesystem::path home;

    /// This process's.
    static PersonalFolders current();

    /// What `variable` says ("XDG_STATE_HOME") when that is absolute, otherwise `usual` (".local/state") in
    /// the home.
    std::filesystem::path folder(std::string_view name, const std::filesystem::path& usual) const;
};

}  // namespace zelto
