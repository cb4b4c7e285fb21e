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

/// What a written file outlives: a death of the process only, or a loss of power too, which costs two waits
/// for the disk.
enum class Durability { processDeath, powerLoss };

/// Replaces `path` so that readers see the old bytes or the new ones: a new temporary file in the same folder
/// is filled and renamed. False when that fails; the old file then stays and no temporary file is left.
bool writeFileAtomically(
    const std::filesystem::path& path, std::string_view bytes, Durability durability = Durability::powerLoss);

/// Deletes the temporary files that a death in the middle of such a write has left beside `path`.
void removeLeftovers(const std::filesystem::path& path);

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
