#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/Result.hpp"

namespace zelto {

/// The bytes of a regular file; absent when it is anything else, is larger than `mostBytes`, or cannot be
/// read to its end. Never waits for a FIFO's or a device's other side.
std::optional<std::string> readFile(
    const std::filesystem::path& path, std::size_t mostBytes = std::size_t{16} << 20);

/// What a written file outlives: a death of the process only, or a loss of power too, which costs two waits
/// for the disk.
enum class Durability { processDeath, powerLoss };

/// Who may read a file that was not there before: what the process's mask says, or its owner alone.
enum class Readers { byMask, owner };

struct WriteOptions {
    Durability durability = Durability::powerLoss;
    Readers readers = Readers::byMask;
};

/// Replaces `path` so that readers see the old bytes or the new ones: a new temporary file in the same folder
/// is filled and renamed. A file that is replaced hands its mode on. The fault has the system's reason; the
/// old file then stays and no temporary file is left.
Result<void> writeFileAtomically(
    const std::filesystem::path& path, std::string_view bytes, WriteOptions options = {});

/// Deletes the temporary files that a death in the middle of such a write has left beside `path`; not those
/// of a write that is under way in another process.
void removeLeftovers(const std::filesystem::path& path);

/// Makes a folder, those above it by the process's mask, itself for its owner alone. What exists stays as it
/// is. Faults are silent: whoever writes into the folder meets them.
void makePrivateFolder(const std::filesystem::path& path);

/// A program that was installed beside the running one.
std::filesystem::path programBeside(std::string_view name);

/// Where a user's home is looked up.
struct HomeLookup {
    /// The home folder that the user database has for the current real user id; absent without an entry.
    std::function<std::optional<std::string>()> userDatabase;
    /// What the environment says.
    std::function<std::optional<std::string>()> environment;

    /// The entry of the real user, however long it is, and HOME.
    static HomeLookup system();
    /// Always `home`.
    static HomeLookup fixed(const std::string& home);

    /// The user database's folder, else the environment's, else "/".
    std::filesystem::path home() const;
};

}  // namespace zelto
