#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

/// The bytes of a regular file; absent when it is anything else or cannot be read to its end. Never waits for
/// a FIFO's or a device's other side.
std::optional<std::string> readFile(const std::filesystem::path& path);

/// Replaces `path` so that readers see the old bytes or the new ones, also after a loss of power: a new
/// temporary file in the same folder is filled, synced and renamed. False when that fails; the old file then
/// stays and no temporary file is left.
bool writeFileAtomically(const std::filesystem::path& path, std::string_view bytes);

/// Where a user's home is looked up.
struct HomeLookup {
    /// The home folder that the user database has for the current real user id; absent without an entry.
    std::function<std::optional<std::string>()> userDatabase;
    /// What the environment says.
    std::function<std::optional<std::string>()> environment;

    static HomeLookup system();
    /// Always `home`.
    static HomeLookup fixed(const std::string& home);

    /// The user database's folder, else the environment's, else "/".
    std::filesystem::path home() const;
};

}  // namespace zelto
