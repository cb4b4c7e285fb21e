// zelto-agent: the app's background program.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <malloc.h>
#include <optional>

#include <CLI/CLI.hpp>
#include <glib-unix.h>
#include <unistd.h>

#include "agent/AgentInterface.hpp"
#include "bus/Listener.hpp"
#include "foundation/Files.hpp"
#include "runloop/Log.hpp"
#include "runloop/MainLoop.hpp"

namespace {

using namespace zelto;

/// An analysis asks daemons that may take a minute each.
constexpr std::chrono::seconds longestAnswer{90};

struct Options {
    std::string bus, systemBus, machine, home, pages = ZELTO_PAGES_FOLDER;
};

void describe(CLI::App& app, Options& options) {
    app.add_option("--bus", options.bus, "The bus's address, instead of the session bus")
        ->type_name("ADDRESS");
    app.add_option("--system-bus", options.systemBus, "The address of the bus of the machine's daemons")
        ->type_name("ADDRESS");
    app.add_option("--machine", options.machine, "Where proc and sys are, instead of /")->type_name("DIR");
    app.add_option("--home", options.home, "Whose snapshot is written, instead of your home")
        ->type_name("DIR");
    app.add_option("--pages", options.pages, "Where the pages of the tabs are")
        ->check(CLI::ExistingDirectory)
        ->type_name("DIR");
}

agent::AgentOptions optionsOf(const Options& given) {
    const auto home = given.home.empty() ? HomeLookup::system() : HomeLookup::fixed(given.home);
    agent::AgentOptions options{
        .places = agent::Places::of(PersonalFolders::current(), home), .log = runloop::logToStandardError};
    if (!given.bus.empty()) options.sessionBus = bus::Address::at(given.bus);
    if (!given.systemBus.empty()) options.systemBus = bus::Address::at(given.systemBus);
    if (!given.machine.empty()) options.root = given.machine;
    options.pages = given.pages;
    return options;
}

int run(int argc, char** argv) {
    CLI::App app("The app behind Zelto's widgets: fills their snapshot and does what taps on them ask for.");
    app.name("zelto-agent");
    Options given;
    describe(app, given);
    app.set_version_flag("--version", "zelto-agent " ZELTO_VERSION);
    CLI11_PARSE(app, argc, argv);

    // The readings' threads would otherwise keep arenas of their own.
    mallopt(M_ARENA_MAX, 1);
    std::signal(SIGPIPE, SIG_IGN);
    auto options = optionsOf(given);
    bool isOver = false;
    std::unique_ptr<agent::Agent> running;
    // Calls wait for the main loop, which runs once the agent is there.
    auto listener = bus::Listener::start(
        {.address = options.sessionBus,
         .interface = agent::agentInterface(
             [&running]() -> agent::Agent& { return *running; }, [&isOver] { isOver = true; }),
         .trusted = {getuid()},
         .dispatch = runloop::postToMainThread,
         .deadline = longestAnswer,
         .lost = [&isOver] { runloop::postToMainThread([&isOver] { isOver = true; }); }});
    if (!listener) {
        std::fprintf(stderr, "zelto-agent: %s\n", listener.fault().text.c_str());
        return 1;
    }
    options.changed = [&listener](const std::string& what) { listener->send("changed", {what}); };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        g_unix_signal_add(
            signal,
            [](gpointer over) -> gboolean {
                *static_cast<bool*>(over) = true;
                return G_SOURCE_CONTINUE;
            },
            &isOver);
    running = std::make_unique<agent::Agent>(std::move(options));
    runloop::runMainLoopUntil([&isOver] { return isOver; });
    running->finish();
    // Closed first: what was answered last is sent then.
    { const bus::Listener closing = *std::move(listener); }
    std::fflush(nullptr);
    // A reading that hangs in the kernel would find what is taken down under it.
    _exit(0);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zelto-agent: %s\n", error.what());
        return 1;
    }
}
