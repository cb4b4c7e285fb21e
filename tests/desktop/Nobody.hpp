#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace zelto::test {

/// A command as a user without rights runs it, with a folder that is then theirs: compositors refuse to run
/// as root.
inline std::vector<std::string> asNobody(
    const std::filesystem::path& folder, std::vector<std::string> command) {
    constexpr uid_t nobody = 65534;
    if (getuid() != 0) return command;
    if (chown(folder.c_str(), nobody, nobody) != 0) throw std::runtime_error("no folder for it");
    const std::string user = std::to_string(nobody);
    command.insert(
        command.begin(), {"/usr/bin/setpriv", "--reuid=" + user, "--regid=" + user, "--clear-groups"});
    return command;
}

}  // namespace zelto::test
