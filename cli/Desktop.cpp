#include <cerrno>
#include <cstring>
#include <filesystem>

#include <unistd.h>

#include "Commands.hpp"
#include "Failure.hpp"
#include "foundation/Files.hpp"
#include "host/DesktopInterface.hpp"

namespace zelto::cli {

void desktop(const std::vector<std::string>& arguments) {
    const auto program = programBeside("zelto-desktop");
    std::vector<std::string> words{program.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (auto& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    throw Failure(program.string() + ": " + std::strerror(errno));
}

void reload(const ReloadOptions& options) {
    bus::Connection running(
        options.bus.empty() ? bus::Address::session() : bus::Address::at(options.bus),
        std::string(host::desktopService));
    const auto reloaded = running.call<void>("reload", std::chrono::seconds(10), options.kind);
    if (reloaded) return;
    if (reloaded.fault().kind == bus::ErrorKind::peerAbsent)
        throw Failure("zelto-desktop is not running (start it with: zelto desktop)");
    throw Failure(reloaded.fault().text);
}

}  // namespace zelto::cli
