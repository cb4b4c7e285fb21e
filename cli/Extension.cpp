#include "Extension.hpp"

#include <algorithm>
#include <cctype>
#include <utility>

#include "Failure.hpp"
#include "Input.hpp"
#include "texts/Environment.hpp"

namespace zelto::cli {
namespace {

host::ExtensionProgram programFor(const ExtensionOptions& options) {
    host::ExtensionProgram program{
        .path =
            options.program.empty() ? host::installedExtension() : std::filesystem::path(options.program)};
    for (const auto& [option, value] :
         {std::pair{"--home", &options.home}, {"--machine", &options.machine}, {"--now", &options.now}})
        if (!value->empty()) program.arguments.insert(program.arguments.end(), {option, *value});
    return program;
}

/// "ZeltoWorldClock" is also called "worldClock"; case does not matter to a person.
std::string memberName(const std::string& kind) {
    constexpr std::string_view prefix = "Zelto";
    std::string name = kind.starts_with(prefix) ? kind.substr(prefix.size()) : kind;
    std::ranges::transform(
        name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name == "widget" ? "overview" : name;
}

}  // namespace

// What goes wrong is told by the outcomes; nobody reads a log.
Extension::Extension(const ExtensionOptions& options)
    : supervisor_({.program = programFor(options)}, [](const std::string&) {}) {}

host::Outcomes Extension::ask(std::vector<widgetkit::Request> requests) {
    const texts::Environment environment = texts::Environment::current();
    for (widgetkit::Request& request : requests) {
        request.locale = environment.locale;
        request.timeZone = environment.timeZone;
    }
    const std::size_t count = requests.size();
    host::Outcomes all;
    supervisor_.ask(std::move(requests), [&all](host::Outcomes outcomes) { all.merge(outcomes); });
    host::runMainLoopUntil([&] { return all.size() == count; });
    return all;
}

widgetkit::Reply Extension::ask(widgetkit::Request request) {
    host::Outcome outcome = ask(std::vector{std::move(request)}).at(0);
    if (!outcome) throw Failure(outcome.fault().reason);
    return std::move(outcome->reply);
}

std::vector<widgetkit::WidgetDescription> Extension::widgets() {
    auto reply = ask(widgetkit::Request{.request = widgetkit::RequestKind::bundle});
    if (!reply.widgets) throw Failure("the widget extension did not list its widgets");
    return *std::move(reply.widgets);
}

const widgetkit::WidgetDescription& findWidget(
    const std::vector<widgetkit::WidgetDescription>& widgets, const std::string& name) {
    std::string names;
    for (const widgetkit::WidgetDescription& widget : widgets) {
        if (widget.kind == name || memberName(widget.kind) == memberName(name)) return widget;
        names += (names.empty() ? "" : ", ") + widget.kind;
    }
    throw Failure("no widget '" + name + "'; there are " + names);
}

void requireFamily(const widgetkit::WidgetDescription& widget, widgetkit::WidgetFamily family) {
    if (std::ranges::find(widget.families, family) == widget.families.end())
        throw Failure(
            "--family: " + widget.kind + " offers " + familyNames(widget.families) + ", not " +
            familyName(family));
}

}  // namespace zelto::cli
