// zelto-desktop: the widgets on a desktop.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <gtkmm/main.h>
#include <locale>
#include <malloc.h>
#include <mutex>

#include <CLI/CLI.hpp>
#include <glib-unix.h>

#include "desktop/Desktop.hpp"
#include "host/DesktopInterface.hpp"
#include "platform/foundation/Environment.hpp"

namespace {

using namespace zelto;

void log(const std::string& line) {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    std::fprintf(stderr, "zelto-desktop: %s\n", line.c_str());
}

struct Options {
    desktop::DesktopOptions desktop;
    std::string extension, home, machine, now;
    std::vector<std::string> wishes;
    std::string bus;
    bool gallery = false;
    double scale = 0;
};

void describe(CLI::App& app, Options& options) {
    app.add_option("--add", options.wishes, "Add a widget, such as ZeltoBattery:small; may be repeated")
        ->type_name("KIND:FAMILY");
    app.add_flag("--gallery", options.gallery, "Open the gallery");
    app.add_option("--scale", options.scale, "Scale factor, overriding the desktop's")
        ->check(CLI::Range(0.25, 8.0))
        ->type_name("N");
    app.add_option(
           "--link-command",
           options.desktop.linkCommand,
           "Run with each link, instead of the links' own program")
        ->type_name("CMD");
    app.add_option("--bus", options.bus, "The bus's address, instead of the session bus")
        ->type_name("ADDRESS");
    app.add_option("--extension", options.extension, "The extension program, instead of the installed one")
        ->type_name("FILE");
    app.add_option("--home", options.home, "Where the extension looks for the snapshot, instead of your home")
        ->type_name("DIR");
    app.add_option("--machine", options.machine, "Where it finds proc and sys, instead of /")
        ->type_name("DIR");
    app.add_option("--now", options.now, "The current instant for the extension, ISO 8601 with an offset")
        ->type_name("D");
    app.add_option(
           "--restart-pause",
           options.desktop.extension.firstPause,
           "Seconds before a broken extension is started again, doubling up to sixty times that")
        ->capture_default_str()
        ->check(CLI::Range(0.001, 60.0))
        ->type_name("N");
}

/// Hands the wishes to the host that runs already.
int handOver(
    const xpc::Bus& bus, const Options& options,
    const std::vector<std::pair<std::string, std::string>>& wishes) {
    xpc::Connection running(bus, host::desktopInterface());
    const auto call = [&](const std::string& method, const xpc::Values& arguments) {
        const auto outcome = running.call(method, arguments, std::chrono::seconds(10));
        const auto* error = std::get_if<xpc::Error>(&outcome);
        if (error) log(error->text);
        return !error;
    };
    bool isDone = true;
    for (const auto& [kind, family] : wishes) isDone &= call("add", {kind, family});
    if (options.gallery || wishes.empty()) isDone &= call("gallery", {});
    return isDone ? 0 : 1;
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
        log(std::string(error.what()) + " (try --help)");
        return 2;
    }
    std::vector<std::pair<std::string, std::string>> wishes;
    for (const std::string& text : options.wishes) {
        const auto wish = host::parseWish(text);
        if (!wish) {
            log("--add: '" + text + "' is not KIND:FAMILY, such as ZeltoBattery:small");
            return 2;
        }
        wishes.push_back(*wish);
    }

    // What was read and decoded on other threads would otherwise stay with arenas of their own.
    mallopt(M_ARENA_MAX, 1);
    std::signal(SIGPIPE, SIG_IGN);
    const xpc::Bus bus = options.bus.empty() ? xpc::Bus::session() : xpc::Bus::at(options.bus);
    std::unique_ptr<desktop::Desktop> desktop;
    const auto quit = [] { gtk_main_quit(); };
    const auto handler = [&](const std::string& method, xpc::Values arguments, xpc::Answer answer) {
        auto shared = std::make_shared<xpc::Answer>(std::move(answer));
        desktop::postToMainThread([&, method, arguments = std::move(arguments), shared] {
            if (!desktop) return;
            (*shared)(host::perform(
                {.host = desktop->host(),
                 .columns = [&] { return desktop->columns(); },
                 .showGallery = [&] { desktop->showGallery(); },
                 .quit = quit},
                method,
                arguments));
        });
    };
    auto listener = host::listenAsDesktop(bus, handler);
    if (const auto* error = std::get_if<xpc::Error>(&listener)) {
        if (error->kind == xpc::ErrorKind::nameTaken) return handOver(bus, options, wishes);
        log("without a message bus, other programs cannot reach the widgets: " + error->text);
    }

    g_set_prgname("zelto-desktop");
    // Nothing here is drawn by OpenGL, whose drivers would cost 20 MB and half of the start.
    setenv("GDK_GL", "disable", 0);
    gtk_disable_setlocale();
    if (!gtk_init_check(nullptr, nullptr)) {
        log("there is no display; `zelto render` draws pictures without one");
        return 1;
    }
    Gtk::Main::init_gtkmm_internals();
    // The toolkit's wrapper has numbers written with the locale's commas and dots, in files too.
    std::locale::global(std::locale::classic());

    auto& settings = options.desktop;
    settings.log = log;
    settings.folders = host::Folders::current();
    settings.showsGallery = options.gallery;
    if (options.scale > 0) settings.zoom = options.scale;
    settings.extension.program.path =
        options.extension.empty() ? host::installedExtension() : std::filesystem::path(options.extension);
    settings.extension.longestPause = settings.extension.firstPause * 60;
    for (const auto& [option, value] :
         {std::pair{"--home", &options.home}, {"--machine", &options.machine}, {"--now", &options.now}})
        if (!value->empty())
            settings.extension.program.arguments.insert(
                settings.extension.program.arguments.end(), {option, *value});
    for (const auto& [kind, family] : wishes)
        settings.wishes.emplace_back(kind, *named<WidgetFamily>(family));

    desktop = std::make_unique<desktop::Desktop>(settings);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        g_unix_signal_add(
            signal,
            [](gpointer) -> gboolean {
                gtk_main_quit();
                return G_SOURCE_CONTINUE;
            },
            nullptr);
    gtk_main();
    // Whoever starts the widgets anew from here on finds the name free.
    listener.emplace<xpc::Error>();
    desktop.reset();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        log(error.what());
        return 1;
    }
}
