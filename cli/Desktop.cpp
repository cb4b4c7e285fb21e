#include <cerrno>
#include <cstring>
#include <filesystem>

#include <unistd.h>

#include "cli/Commands.hpp"
#include "cli/Failure.hpp"
#include "host/DesktopInterface.hpp"

namespace zelto::cli {

void desktop(const std::vector<std::string>& arguments) {
    const auto program = host::installedExtension().parent_path() / "zelto-desktop";
    std::vector<std::string> words{program.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (auto& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    throw Failure(program.string() + ": " + std::strerror(errno));
}

void reload(const ReloadOptions& options) {
    xpc::Connection running(
        options.bus.empty() ? xpc::Bus::session() : xpc::Bus::at(options.bus), host::desktopInterface());
    const auto outcome = running.call("reload", {options.kind}, std::chrono::seconds(10));
    const auto* error = std::get_if<xpc::Error>(&outcome);
    if (!error) return;
    if (error->kind == xpc::ErrorKind::peerAbsent)
        throw Failure("zelto-desktop is not running (start it with: zelto desktop)");
    throw Failure(error->text);
}

}  // namespace zelto::cli
