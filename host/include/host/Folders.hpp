#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zelto::host {

/// Where the host keeps what it knows.
struct Folders {
    std::filesystem::path configuration;  // the widgets' places
    std::filesystem::path cache;          // their last timelines

    /// By XDG_CONFIG_HOME and XDG_CACHE_HOME; one that is missing or not absolute counts as the usual folder
    /// in `home`.
    static Folders of(
        const std::function<std::optional<std::string>(std::string_view)>& variable,
        const std::filesystem::path& home);

    static Folders current();
};

}  // namespace zelto::host
