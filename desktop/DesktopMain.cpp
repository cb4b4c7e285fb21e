// zelto-desktop: the widgets on a desktop.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <gtkmm/main.h>
#include <locale>
#include <malloc.h>

#include <CLI/CLI.hpp>
#include <glib-unix.h>

#include "Desktop.hpp"
#include "DisplayChoice.hpp"
#include "foundation/ISO8601.hpp"
#include "host/BusPresence.hpp"
#include "host/HostLock.hpp"
#include "runloop/Log.hpp"
#include "texts/Environment.hpp"

namespace {

using namespace zelto;

/// What is wrong with the command itself.
void complain(const std::string& text) {
    std::fprintf(stderr, "zelto-desktop: %s\n", text.c_str());
}

using runloop::logToStandardError;

/// For one that has left the bus and is writing its last.
constexpr std::chrono::seconds lockPatience{3};

using Additions = std::vector<std::pair<std::string, widgetkit::WidgetFamily>>;

struct Options {
    desktop::DesktopOptions desktop;
    std::string extension, home, machine, now;
    std::vector<std::string> additions;
    std::string bus;
    bool gallery = false, focus = false;
};

void describe(CLI::App& app, Options& options) {
    app.add_option("--add", options.additions, "Add a widget, such as ZeltoBattery:small; may be repeated")
        ->type_name("KIND:FAMILY");
    app.add_flag("--gallery", options.gallery, "Open the gallery");
    app.add_flag("--focus", options.focus, "Give the keyboard to the widgets, each time to the next one");
    app.add_option("--scale", options.desktop.zoom, "Scale factor, overriding the desktop's and the setting")
        ->check(CLI::Range(host::smallestScale, host::largestScale))
        ->type_name("N");
    app.add_option(
           "--link-command",
           options.desktop.linkCommand,
           "Run with each link, instead of the links' own program")
        ->type_name("CMD");
    app.add_option("--bus", options.bus, "The bus's address, instead of the session bus")
        ->type_name("ADDRESS");
    app.add_option("--extension", options.extension, "The extension program, instead of the installed one")
        ->check(CLI::ExistingFile)
        ->type_name("FILE");
    app.add_option("--home", options.home, "Where the extension looks for the snapshot, instead of your home")
        ->type_name("DIR");
    app.add_option("--machine", options.machine, "Where it finds proc and sys, instead of /")
        ->type_name("DIR");
    app.add_option("--now", options.now, "The current instant for the extension, ISO 8601 with an offset")
        ->check(CLI::Validator(
            [](const std::string& text) {
                return parseISO8601(text) ? std::string()
                                          : "'" + text + "' is no date like 2026-03-11T14:05:00-03:00";
            },
            ""))
        ->type_name("D");
    app.add_option("--locale", options.desktop.locale, "Of dates and numbers, such as pt_BR")
        ->check(CLI::Validator(
            [](const std::string& name) {
                return texts::isKnownLocale(name) ? std::string() : "'" + name + "' is not known";
            },
            ""))
        ->type_name("L");
    app.add_option(
           "--refresh",
           options.desktop.refresh,
           "Seconds between readings of the moment while somebody sees them, on mains power; 0 for every few "
           "minutes (30, or as set)")
        ->check(CLI::Range(0.0, host::longestRefresh))
        ->type_name("N");
    app.add_option(
           "--restart-pause",
           options.desktop.extension.firstPause,
           "Seconds before a broken extension is started again, doubling up to sixty times that")
        ->capture_default_str()
        ->check(CLI::Range(0.001, 60.0))
        ->type_name("N");
}

/// The widgets to be added; absent, with a line in the log, when one is not KIND:FAMILY.
std::optional<Additions> additionsOf(const Options& options) {
    Additions out;
    for (const std::string& text : options.additions) {
        const auto addition = host::parseAddition(text);
        if (!addition) {
            complain("--add: '" + text + "' is not KIND:FAMILY, such as ZeltoBattery:small");
            return std::nullopt;
        }
        out.push_back(*addition);
    }
    return out;
}

/// Hands to the host that runs already what it can take; the status.
int handOver(const CLI::App& app, const bus::Address& address, const Additions& additions) {
    bus::Connection running(address, std::string(host::desktopService));
    constexpr std::chrono::seconds deadline{10};
    bool isDone = true, isAny = false;
    const auto note = [&](const auto& called) {
        isAny = true;
        if (called) return;
        complain(called.fault().text);
        isDone = false;
    };
    for (const CLI::Option* option : app.get_options()) {
        const std::string name = option->get_single_name();
        // Which bus it is on has been heard.
        if (option->count() == 0 || name == "bus") continue;
        if (name == "add") {
            for (const auto& [kind, family] : additions)
                note(running.call<std::string>(
                    "add", deadline, kind, std::string(records::nameOf(family)), std::string()));
        } else if (name == "focus" || name == "gallery") {
            note(running.call<void>(name, deadline));
        } else if (name == "scale" || name == "refresh" || name == "link-command") {
            note(running.call<void>("set", deadline, name, option->results().front()));
        } else {
            note(bus::Result<void>(bus::Error{
                bus::ErrorKind::badPayload,
                "--" + name + " cannot be changed while the widgets are running"}));
        }
    }
    if (!isAny) note(running.call<void>("gallery", deadline));
    return isDone ? 0 : 1;
}

/// False when there is no display.
bool startToolkit() {
    g_set_prgname("zelto-desktop");
    // Nothing here is drawn by OpenGL, whose drivers would cost 20 MB and half of the start.
    setenv("GDK_GL", "disable", 0);
    gtk_disable_setlocale();
    if (const auto trouble = desktop::chooseDisplay())
        logToStandardError(runloop::LogLevel::warning, *trouble);
    if (!gtk_init_check(nullptr, nullptr)) return false;
    Gtk::Main::init_gtkmm_internals();
    // The toolkit's wrapper has numbers written with the locale's commas and dots, in files too.
    std::locale::global(std::locale::classic());
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        g_unix_signal_add(
            signal,
            [](gpointer) -> gboolean {
                gtk_main_quit();
                return G_SOURCE_CONTINUE;
            },
            nullptr);
    return true;
}

desktop::DesktopOptions settingsOf(const Options& options, Additions additions) {
    desktop::DesktopOptions out = options.desktop;
    out.log = logToStandardError;
    out.folders = host::Folders::current();
    out.additions = std::move(additions);
    out.showsGallery = options.gallery;
    out.takesKeys = options.focus;
    if (!options.machine.empty()) out.machine = options.machine;
    auto& program = out.extension.program;
    program.path =
        options.extension.empty() ? host::installedExtension() : std::filesystem::path(options.extension);
    out.extension.longestPause = out.extension.firstPause * 60;
    for (const auto& [option, value] :
         {std::pair{"--home", &options.home}, {"--machine", &options.machine}, {"--now", &options.now}})
        if (!value->empty()) program.arguments.insert(program.arguments.end(), {option, *value});
    return out;
}

/// What others may ask of a desktop that is there by the time that they are answered.
host::DesktopActions actionsOn(const std::unique_ptr<desktop::Desktop>& desktop) {
    return {
        .host = [&desktop]() -> host::WidgetHost& { return desktop->host(); },
        .showGallery = [&desktop] { desktop->showGallery(); },
        .focusNext = [&desktop] { desktop->focusNext(); },
        .quit = [] { gtk_main_quit(); },
        .setOption = [&desktop](
                         const std::string& name,
                         const std::string& value) { return desktop->setOption(name, value); }};
}

int run(int argc, char** argv) {
    CLI::App app("Zelto's widgets on the desktop. If they are already running, options are passed to them.");
    Options options;
    describe(app, options);
    app.set_version_flag("--version", "zelto-desktop " ZELTO_VERSION);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& answered) {
        return app.exit(answered);
    } catch (const CLI::ParseError& error) {
        complain(std::string(error.what()) + " (try --help)");
        return 2;
    }
    const auto additions = additionsOf(options);
    if (!additions) return 2;

    // The libraries' threads would otherwise keep arenas of their own.
    mallopt(M_ARENA_MAX, 1);
    std::signal(SIGPIPE, SIG_IGN);
    const auto address = options.bus.empty() ? bus::Address::session() : bus::Address::at(options.bus);
    // Whoever has the name is the one host. Calls wait for the main loop, which runs once the desktop is
    // there.
    std::unique_ptr<desktop::Desktop> desktop;
    host::BusPresence presence(address, actionsOn(desktop), logToStandardError);
    const auto joined = presence.join();
    if (!joined && joined.fault().kind == bus::ErrorKind::nameTaken)
        return handOver(app, address, *additions);
    auto settings = settingsOf(options, *additions);
    settings.bus = address;
    settings.seenChanged = [&presence](bool isSeen) { presence.setSeen(isSeen); };
    const host::HostLock lock(settings.folders.configuration, lockPatience);
    if (!lock.isHeld()) {
        complain(
            "another zelto-desktop is already running on the files in " +
            settings.folders.configuration.string());
        return 1;
    }
    if (!joined) {
        logToStandardError(
            runloop::LogLevel::warning,
            "without a message bus, other programs cannot reach the widgets: " + joined.fault().text);
        presence.rejoin();
    }
    if (!startToolkit()) {
        complain("there is no display; `zelto render` draws pictures without one");
        return 1;
    }
    int status = 0;
    settings.refused = [&status] {
        status = 1;
        gtk_main_quit();
    };
    desktop = std::make_unique<desktop::Desktop>(settings);
    gtk_main();
    // Whoever starts the widgets again from here on finds the name free.
    presence.leave();
    desktop.reset();
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        logToStandardError(runloop::LogLevel::error, error.what());
        return 1;
    }
}
