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

/// A program's copy in a folder: others can come to it, and it is without what its file may do, which a
/// container cannot give.
inline std::string copyIn(const std::filesystem::path& folder, const std::filesystem::path& program) {
    const auto copy = folder / program.filename();
    std::filesystem::copy_file(program, copy);
    return copy;
}

}  // namespace zelto::test
