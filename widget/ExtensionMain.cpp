// zelto-widgets: the widget extension. A host starts it and talks to it over its standard input and output
// (docs/extension-protocol.md). It draws nothing, writes no file and, but for the picture process, starts
// nothing: before its first request it confines itself so that it cannot (docs/confinement.md).

#include <csignal>
#include <cstdio>
#include <exception>
#include <malloc.h>
#include <optional>
#include <string>

#include <unistd.h>

#include "Common/ExtensionAllowance.hpp"
#include "Widgets/WidgetContents.hpp"
#include "confinement/Confinement.hpp"
#include "foundation/Files.hpp"
#include "foundation/ISO8601.hpp"
#include "pictures/PictureProcess.hpp"
#include "widget/Common/LiveReader.hpp"
#include "widget/Widgets/ZeltoWidgetBundle.hpp"
#include "widgetkit/Service.hpp"

namespace {

constexpr const char* usage =
    "Usage: zelto-widgets [--home DIR] [--machine DIR] [--now D]\n"
    "\n"
    "Answers widget requests, one JSON object a line on standard input, one reply a line on\n"
    "standard output, until the input ends. Try: echo '{\"id\":1,\"request\":\"bundle\"}' | zelto-widgets\n"
    "\n"
    "  --home DIR     look for the snapshot below DIR instead of the user's home\n"
    "  --machine DIR  take the readings from DIR/proc and DIR/sys instead of the kernel's\n"
    "  --now D        take D for the current instant: ISO 8601 with an offset\n"
    "  --version      print the version\n";

struct Options {
    zelto::HomeLookup home = zelto::HomeLookup::system();
    std::string machine = "/";
    std::optional<zelto::Date> now = {};
    bool help = false, version = false;
};

/// Absent, with the first invalid option, when there is one.
std::optional<Options> parse(int argc, char** argv, std::string& unknown) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--help" || option == "-h") {
            options.help = true;
        } else if (option == "--version") {
            options.version = true;
        } else if (option == "--home" && i + 1 < argc) {
            options.home = zelto::HomeLookup::fixed(argv[++i]);
        } else if (option == "--machine" && i + 1 < argc) {
            options.machine = argv[++i];
        } else if (option == "--now" && i + 1 < argc && zelto::parseISO8601(argv[i + 1])) {
            options.now = zelto::parseISO8601(argv[++i]);
        } else {
            unknown = option;
            return std::nullopt;
        }
    }
    return options;
}

int run(int argc, char** argv) {
    std::string unknown;
    const auto options = parse(argc, argv, unknown);
    if (!options) {
        std::fprintf(stderr, "zelto-widgets: invalid option '%s' (try --help)\n", unknown.c_str());
        return 2;
    }
    if (options->help) {
        std::fputs(usage, stdout);
        return 0;
    }
    if (options->version) {
        std::puts("zelto-widgets " ZELTO_VERSION);
        return 0;
    }
    // Whoever started it may have left something open.
    zelto::confinement::closeDescriptors(STDERR_FILENO + 1);
    // What is looked up outside is looked up before the door closes; hosts take whole paths only.
    const auto home = zelto::HomeLookup::fixed(std::filesystem::absolute(options->home.home()));
    const auto environment = zelto::texts::Environment::current();
    const std::filesystem::path folder = zelto::shared::WidgetSnapshot::folder(home);
    const auto pictures =
        zelto::pictures::PictureProcess::standBy(zelto::programBeside(zelto::pictures::programName));
    // A host that goes away is seen as a failed write, not as a signal.
    std::signal(SIGPIPE, SIG_IGN);
    // Every request has a thread of its own; one arena for all keeps the memory of eleven at that of one.
    mallopt(M_ARENA_MAX, 1);
    const auto lacks = zelto::confinement::confine(
        zelto::widget::extensionAllowance(folder, options->machine, environment.timeZone));

    const auto readings = [machine = options->machine] {
        return zelto::system::SystemReadings::ofLinux(machine);
    };
    const auto now = [fixed = options->now] { return fixed.value_or(zelto::Date::now()); };
    const zelto::widget::ProviderSources sources{
        .now = now,
        .live = [readings] { return zelto::widget::LiveReader::read(readings()); },
        // Without memory there is an error to tell, not a picture of nothing.
        .snapshot = [home] { return zelto::shared::WidgetSnapshot::read(home); },
    };
    const zelto::widgetkit::Service service(
        zelto::widget::ZeltoWidgetBundle{sources}.body(),
        {.environment = environment,
         .now = now,
         .thumbnail = [&](const std::string& path,
                          auto deadline) { return pictures.thumbnail(path, deadline); },
         .contents = zelto::widget::contentsOf(zelto::shared::WidgetSnapshot::url(home)),
         .confinement = zelto::widgetkit::Confinement{.lacks = lacks, .folders = {folder.string()}}});
    return service.serve(STDIN_FILENO, STDOUT_FILENO) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zelto-widgets: %s\n", error.what());
        return 1;
    }
}
