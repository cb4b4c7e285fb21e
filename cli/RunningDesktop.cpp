// What can be done with the widgets that are on the desktop.

#include "RunningDesktop.hpp"

#include <algorithm>
#include <iostream>

#include <CLI/CLI.hpp>

#include "Commands.hpp"
#include "Failure.hpp"
#include "Input.hpp"
#include "bus/Connection.hpp"
#include "host/DesktopInterface.hpp"
#include "host/PlacedWidget.hpp"
#include "records/JSONDecoder.hpp"
#include "widgetkit/KindNames.hpp"

namespace zelto::cli {
namespace {

constexpr std::chrono::seconds deadline{10};

/// The running host.
class Running {
  public:
    explicit Running(const std::string& bus)
        : connection_(
              bus.empty() ? bus::Address::session() : bus::Address::at(bus),
              std::string(host::desktopService)) {}

    template <class T, class... Arguments>
    T call(const std::string& method, Arguments... arguments) {
        auto result = connection_.call<T>(method, deadline, std::move(arguments)...);
        if (!result) {
            if (result.fault().kind == bus::ErrorKind::peerAbsent)
                throw Failure("zelto-desktop is not running (start it with: zelto desktop)");
            throw Failure(result.fault().text);
        }
        if constexpr (!std::is_void_v<T>) return *std::move(result);
    }

    std::vector<host::PlacedWidget> widgets() {
        auto widgets = records::decodeJSON<std::vector<host::PlacedWidget>>(call<std::string>("list"));
        if (!widgets) throw Failure("an answer that is no list of widgets: " + widgets.fault().text());
        return *std::move(widgets);
    }

    /// The one that a person means: by its id, or by what it shows where no other shows the same.
    std::string idOf(const std::string& name) {
        std::vector<host::PlacedWidget> meant;
        for (const host::PlacedWidget& widget : widgets()) {
            if (widget.id == name) return name;
            if (widgetkit::isCalled(widget.kind, name)) meant.push_back(widget);
        }
        if (meant.empty()) throw Failure("no placed widget '" + name + "' (see: zelto desktop list)");
        if (meant.size() == 1) return meant.front().id;
        std::string ids;
        for (const host::PlacedWidget& widget : meant) ids += (ids.empty() ? "" : ", ") + widget.id;
        throw Failure("there are " + std::to_string(meant.size()) + " widgets '" + name + "': " + ids);
    }

  private:
    bus::Connection connection_;
};

struct Words {
    std::string bus, widget, family, monitor;
    std::int64_t column = 0, row = 0;
    bool json = false;
};

void list(Running running, const Words& words) {
    if (words.json) {
        std::cout << running.call<std::string>("list") << '\n';
        return;
    }
    for (const host::PlacedWidget& widget : running.widgets())
        std::cout << widget.id << "  " << widget.kind << "  " << familyName(widget.family) << "  "
                  << (widget.monitor ? *widget.monitor + " " : "") << widget.column << "," << widget.row
                  << '\n';
}

/// "fans small" and "fans:small".
void add(Running running, const Words& words) {
    std::string kind = words.widget, family = words.family;
    if (family.empty()) {
        const auto both = host::parseAddition(kind);
        if (!both) throw Failure("'" + kind + "' needs a size: small, medium or large", 2);
        kind = both->first;
        family = records::nameOf(both->second);
    }
    std::cout << running.call<std::string>("add", kind, family, words.monitor) << '\n';
}

void remove(Running running, const Words& words) {
    running.call<void>("remove", running.idOf(words.widget));
}

void move(Running running, const Words& words) {
    running.call<void>("move", running.idOf(words.widget), words.monitor, words.column, words.row);
}

void resize(Running running, const Words& words) {
    running.call<void>("resize", running.idOf(words.widget), words.family);
}

void undo(Running running, const Words&) {
    std::cout << running.call<std::string>("undo") << '\n';
}

void focus(Running running, const Words&) {
    running.call<void>("focus");
}

void quit(Running running, const Words&) {
    running.call<void>("quit");
}

struct Verb {
    const char *name, *description;
    void (*run)(Running running, const Words& words);
};
constexpr Verb verbs[] = {
    {"list", "List the widgets that are on the desktop: id, kind, size, monitor, column and row", list},
    {"add", "Add a widget where there is room; prints its id", add},
    {"remove", "Remove a widget", remove},
    {"undo", "Bring back what was removed within the last ten seconds", undo},
    {"move", "Move a widget to a free place", move},
    {"resize", "Show a widget in another size", resize},
    {"focus", "Give the keyboard to the next widget", focus},
    {"quit", "End the widgets", quit}};

void describe(CLI::App& command, const std::string& verb, Words& words) {
    command.add_option("--bus", words.bus, "The bus's address, instead of the session bus")
        ->type_name("ADDRESS");
    const auto isOne = [&verb](std::initializer_list<const char*> names) {
        return std::ranges::find(names, verb) != names.end();
    };
    if (verb == "list") command.add_flag("--json", words.json, "As a JSON array");
    if (verb == "add")
        command.add_option("widget", words.widget, "The widget: fans, ZeltoFans or fans:small")->required();
    if (isOne({"remove", "move", "resize"}))
        command.add_option("widget", words.widget, "Its id, or what it shows: fans or ZeltoFans")->required();
    if (verb == "move") {
        command.add_option("column", words.column, "Tiles from the monitor's left edge, from 0")->required();
        command.add_option("row", words.row, "Tiles from its top, from 0")->required();
    }
    if (isOne({"add", "resize"}))
        command.add_option("size", words.family, "small, medium or large")->required(verb == "resize");
    if (isOne({"add", "move"}))
        command.add_option("--monitor", words.monitor, "Such as DP-1, instead of the first one")
            ->type_name("NAME");
}

}  // namespace

bool isDesktopVerb(const std::string& word) {
    return std::ranges::any_of(verbs, [&](const Verb& verb) { return word == verb.name; });
}

std::string desktopVerbTexts() {
    std::string out = "The widgets that are on the desktop (each with --help):\n";
    for (const Verb& verb : verbs)
        out += "  zelto desktop " + std::string(verb.name) +
               std::string(9 - std::string(verb.name).size(), ' ') + verb.description + "\n";
    return out;
}

int runDesktopVerb(const std::vector<std::string>& words) {
    const auto verb =
        std::ranges::find_if(verbs, [&](const Verb& each) { return words.front() == each.name; });
    CLI::App command(verb->description, std::string("zelto desktop ") + verb->name);
    Words given;
    describe(command, verb->name, given);
    try {
        // The parser takes them from the end.
        std::vector<std::string> rest(words.rbegin(), words.rend() - 1);
        command.parse(rest);
    } catch (const CLI::Success& answered) {
        return command.exit(answered);
    } catch (const CLI::ParseError& error) {
        throw Failure(std::string(error.what()) + " (try --help)", 2);
    }
    verb->run(Running(given.bus), given);
    return 0;
}

void reload(const ReloadOptions& options) {
    Running(options.bus).call<void>("reload", options.kind);
}

}  // namespace zelto::cli
