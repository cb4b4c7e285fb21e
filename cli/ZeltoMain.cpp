// zelto: the front door. Everything that a person can see on the desktop can be had here as text, JSON, PNG
// or SVG.

#include <csignal>
#include <cstdio>
#include <exception>

#include <CLI/CLI.hpp>

#include "Commands.hpp"
#include "Failure.hpp"

namespace {

using namespace zelto::cli;

void addExtensionOptions(CLI::App& command, ExtensionOptions& options) {
    command.add_option("--extension", options.program, "The extension program, instead of the installed one")
        ->type_name("FILE");
    command
        .add_option(
            "--home", options.home, "Where the extension looks for the snapshot, instead of your home")
        ->type_name("DIR");
    command
        .add_option("--now", options.now, "The current instant for the extension, ISO 8601 with an offset")
        ->type_name("D");
    command.add_option("--machine", options.machine, "Where it finds proc and sys, instead of /")
        ->type_name("DIR");
}

void addFamily(CLI::App& command, std::string& family) {
    command.add_option("--family", family, "small, medium or large")->required()->type_name("F");
}

void addGallery(CLI::App& app, GalleryOptions& options) {
    CLI::App* command = app.add_subcommand("gallery", "List the widgets as the extension reports them");
    addExtensionOptions(*command, options.extension);
    command->add_flag("--json", options.json, "As a JSON array");
    command->callback([&] { gallery(options); });
}

void addPreview(CLI::App& app, PreviewOptions& options) {
    CLI::App* command =
        app.add_subcommand("preview", "Show one look of one widget, fully determined by the options");
    command->add_option("kind", options.kind, "The widget: battery or ZeltoBattery, for example")->required();
    addFamily(*command, options.family);
    auto* snapshot =
        command->add_option_group("snapshot", "What the app has told (your own snapshot by default)");
    snapshot->add_option("--snapshot", options.snapshot, "A snapshot file, or - for standard input")
        ->type_name("FILE");
    snapshot->add_flag("--sample", options.sample, "The sample snapshot");
    snapshot->add_flag("--no-snapshot", options.noSnapshot, "None");
    snapshot->require_option(0, 1);
    auto* live = command->add_option_group("live", "What the machine says (real readings by default)");
    live->add_option("--live", options.live, "A JSON object with the live readings, or - for standard input")
        ->type_name("FILE");
    live->add_flag("--placeholder", options.placeholder, "The gallery's readings");
    live->require_option(0, 1);
    command
        ->add_option(
            "--date", options.date, "The entry's date: ISO 8601 with an offset, or seconds since 2001")
        ->type_name("D");
    command->add_option("--now", options.now, "The current instant (the entry's date by default)")
        ->type_name("D");
    command->add_option("--locale", options.locale, "Such as pt_BR")->type_name("L");
    command->add_option("--time-zone", options.timeZone, "Such as America/Sao_Paulo")->type_name("Z");
    command
        ->add_option(
            "--format", options.format, "text, json, png or svg (text, or by the output file's ending)")
        ->check(CLI::IsMember({"text", "json", "png", "svg"}))
        ->type_name("FORMAT");
    command->add_flag(
        "--accessibility", options.accessibility, "What is read aloud, a line each, instead of the outline");
    command->add_option("--scale", options.scale, "Pixels a point of a PNG")
        ->capture_default_str()
        ->check(CLI::Range(0.1, 16.0))
        ->type_name("N");
    command->add_flag("--corners", options.corners, "Rounded corners with nothing behind them, in a picture");
    command->add_option("--output", options.output, "A file instead of standard output")->type_name("FILE");
    command->callback([&] { preview(options); });
}

void addTimeline(CLI::App& app, TimelineOptions& options) {
    CLI::App* command = app.add_subcommand("timeline", "Ask the extension for a timeline");
    command->add_option("kind", options.kind, "The widget: battery or ZeltoBattery, for example")->required();
    addFamily(*command, options.family);
    addExtensionOptions(*command, options.extension);
    command->add_flag("--preview", options.preview, "As the gallery asks");
    command->add_flag("--json", options.json, "The timeline as JSON");
    command->callback([&] { timeline(options); });
}

void addRender(CLI::App& app, RenderOptions& options) {
    CLI::App* command =
        app.add_subcommand("render", "Draw every widget in every family, and a contact sheet");
    command->add_option("--kind", options.kinds, "Only this widget; may be repeated")->type_name("KIND");
    addExtensionOptions(*command, options.extension);
    command->add_flag("--preview", options.preview, "As the gallery shows them");
    command->add_option("--scale", options.scale, "Pixels a point")
        ->capture_default_str()
        ->check(CLI::Range(0.1, 16.0))
        ->type_name("N");
    command->add_flag("--corners", options.corners, "Rounded corners with nothing behind them");
    command->add_option("--output", options.output, "Where the pictures go")
        ->capture_default_str()
        ->type_name("DIR");
    command->callback([&] { render(options); });
}

void addSnapshot(CLI::App& app, std::string& file) {
    CLI::App* command = app.add_subcommand("snapshot", "The document that the app hands to the widgets");
    command->require_subcommand(1);
    command->add_subcommand("sample", "Print the sample document")->callback([] { snapshotSample(); });
    CLI::App* check = command->add_subcommand("check", "Say ok, or the place and reason of the first fault");
    check->add_option("file", file, "A file, or - for standard input; your own snapshot by default")
        ->type_name("FILE");
    check->callback([&] { snapshotCheck(file); });
}

/// A command of the app's: what it may be told besides the bus is the caller's to add.
CLI::App* addAppVerb(
    CLI::App& command, const char* name, const char* description, AppOptions& options,
    void (*run)(const AppOptions&)) {
    CLI::App* verb = command.add_subcommand(name, description);
    verb->add_option("--bus", options.bus, "The bus's address, instead of the session bus")
        ->type_name("ADDRESS");
    verb->callback([&options, run] { run(options); });
    return verb;
}

void addJSON(CLI::App* verb, AppOptions& options) {
    verb->add_flag("--json", options.json, "As JSON");
}

void addAwake(CLI::App& app, AppOptions& options) {
    CLI::App* command = app.add_subcommand("awake", "Keep the machine awake");
    command->require_subcommand(1);
    addAppVerb(
        *command, "on", "Keep it awake, until it is turned off where no time is given", options, awakeOn)
        ->add_option("--minutes", options.minutes, "For so long")
        ->check(CLI::Range(1, 10'080))
        ->type_name("N");
    addAppVerb(*command, "off", "Let it sleep again", options, awakeOff);
    addAppVerb(*command, "toggle", "Keep it awake for an hour, or let it sleep", options, awakeToggle);
    addJSON(
        addAppVerb(
            *command, "status", "Say what keeps it awake, also of other programs", options, awakeStatus),
        options);
}

void addClock(CLI::App& app, AppOptions& options) {
    CLI::App* command = app.add_subcommand("clock", "The cities of the world clock");
    command->require_subcommand(1);
    addJSON(addAppVerb(*command, "list", "List their time zones", options, clockList), options);
    for (CLI::App* verb :
         {addAppVerb(*command, "add", "Add one at the end; prints its zone", options, clockAdd),
          addAppVerb(*command, "remove", "Remove one", options, clockRemove)})
        verb->add_option("zone", options.zone, "Such as Asia/Tokyo, or tokyo")->required();
}

void addCare(CLI::App& app, AppOptions& options) {
    CLI::App* command = app.add_subcommand("care", "The analysis of the machine, which only advises");
    command->require_subcommand(1);
    addJSON(addAppVerb(*command, "show", "Print what the last one found", options, careShow), options);
    addJSON(addAppVerb(*command, "run", "Analyse now, and print what is found", options, careRun), options);
}

void addApp(CLI::App& app, AppOptions& options) {
    CLI::App* command = app.add_subcommand("app", "The app behind the widgets (zelto-agent)");
    command->require_subcommand(1);
    addJSON(
        addAppVerb(*command, "status", "Say how it is; holds nothing personal", options, appStatus), options);
    CLI::App* snapshot = command->add_subcommand("snapshot", "Print a snapshot made now, without the app");
    snapshot->add_option("--home", options.home, "Whose home, instead of yours")->type_name("DIR");
    snapshot->add_option("--machine", options.machine, "Where proc and sys are, instead of /")
        ->type_name("DIR");
    snapshot->callback([&options] { appSnapshot(options); });
    addAppVerb(*command, "open", "Do what a link of the widgets asks for", options, appOpen)
        ->add_option("link", options.link, "Such as zelto://awake?minutes=30")
        ->required();
    CLI::App* set = addAppVerb(*command, "set", "Change a setting", options, appSet);
    set->add_option("setting", options.option, "awake-ends-at-lock or awake-ends-on-low-battery")->required();
    set->add_option("value", options.value, "on or off")->required();
    addAppVerb(*command, "quit", "End it", options, appQuit);
}

void addDesktop(CLI::App& app, int& status) {
    CLI::App* command = app.add_subcommand(
        "desktop",
        "Put the widgets on the desktop, or list, add, remove, move and resize them there (zelto desktop "
        "--help)");
    command->prefix_command();
    command->set_help_flag();
    command->callback([command, &status] { status = desktop(command->remaining()); });
}

void addReload(CLI::App& app, ReloadOptions& options) {
    CLI::App* command = app.add_subcommand("reload", "Have the widgets on the desktop show what is new");
    command->add_option("kind", options.kind, "Only widgets of this kind, such as ZeltoBattery");
    command->add_option("--bus", options.bus, "The bus's address, instead of the session bus")
        ->type_name("ADDRESS");
    command->callback([&] { reload(options); });
}

void addHelper(CLI::App& app, HelperOptions& options) {
    CLI::App* command = app.add_subcommand("helper", "Talk to the helper that changes charging and fans");
    command->require_subcommand(1);
    command->footer(helperExitTexts());
    const auto add = [&](const char* name, const char* description, void (*run)(const HelperOptions&)) {
        CLI::App* action = command->add_subcommand(name, description);
        action->add_option("--bus", options.bus, "The bus's address, instead of the system bus")
            ->type_name("ADDRESS");
        action->add_option("--deadline", options.deadline, "How long to wait for an answer, in seconds")
            ->capture_default_str()
            ->check(CLI::Range(0.001, 3600.0))
            ->type_name("N");
        action->callback([&options, run] { run(options); });
        return action;
    };
    add("status", "Show its state", helperStatus)->add_flag("--json", options.json, "As JSON");
    for (CLI::App* action :
         {add("set-charge", "Change charge settings, keeping those that are not named", helperSetCharge),
          add("set-fan", "Change fan settings, keeping those that are not named", helperSetFan)})
        action->add_option("changes", options.changes, "Such as limit=80")
            ->required()
            ->type_name("FIELD=VALUE");
    add("reset", "Reset all charge and fan settings", helperReset);
}

int run(int argc, char** argv) {
    CLI::App app("Zelto's widgets, from the command line.");
    app.require_subcommand(1);
    app.set_version_flag("--version", "zelto " ZELTO_VERSION);
    GalleryOptions galleryOptions;
    PreviewOptions previewOptions;
    TimelineOptions timelineOptions;
    RenderOptions renderOptions;
    std::string snapshotFile;
    ReloadOptions reloadOptions;
    HelperOptions helperOptions;
    addGallery(app, galleryOptions);
    addPreview(app, previewOptions);
    addTimeline(app, timelineOptions);
    addRender(app, renderOptions);
    addSnapshot(app, snapshotFile);
    int status = 0;
    addDesktop(app, status);
    addReload(app, reloadOptions);
    addHelper(app, helperOptions);
    AppOptions appOptions;
    addAwake(app, appOptions);
    addClock(app, appOptions);
    addCare(app, appOptions);
    addApp(app, appOptions);
    try {
        app.parse(argc, argv);
        return status;
    } catch (const CLI::Success& answered) {
        return app.exit(answered);
    } catch (const CLI::RequiredError& error) {
        // The parser says that a word is missing where one that it does not know was given.
        const std::string last = argc > 1 ? argv[argc - 1] : "-";
        const std::string what = last.starts_with('-') ? error.what() : "no command '" + last + "'";
        std::fprintf(stderr, "zelto: %s (try --help)\n", what.c_str());
        return 2;
    } catch (const CLI::ParseError& error) {
        std::fprintf(stderr, "zelto: %s (try --help)\n", error.what());
        return 2;
    }
}

}  // namespace

int main(int argc, char** argv) {
    // The extension may go away while it is written to; that is seen as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return run(argc, argv);
    } catch (const Failure& failure) {
        std::fprintf(stderr, "zelto: %s\n", failure.what());
        return failure.status;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zelto: %s\n", error.what());
        return 1;
    }
}
