#include "Extension.hpp"

#include <algorithm>
#include <utility>

#include "Failure.hpp"
#include "Input.hpp"
#include "texts/Environment.hpp"
#include "widgetkit/KindNames.hpp"

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

}  // namespace

// What goes wrong is told by the outcomes; nobody reads a log.
Extension::Extension(const ExtensionOptions& options)
    : supervisor_({.program = programFor(options)}, [](runloop::LogLevel, const std::string&) {}) {}

host::Outcomes Extension::ask(std::vector<widgetkit::Request> requests) {
    const texts::Environment environment = texts::Environment::current();
    for (widgetkit::Request& request : requests) {
        request.locale = environment.locale;
        request.timeZone = environment.timeZone;
    }
    const std::size_t count = requests.size();
    host::Outcomes all;
    supervisor_.ask(std::move(requests), [&all](host::Outcomes outcomes) { all.merge(outcomes); });
    runloop::runMainLoopUntil([&] { return all.size() == count; });
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
    if (const auto* found = widgetkit::findWidget(widgets, name)) return *found;
    std::string names;
    for (const widgetkit::WidgetDescription& widget : widgets)
        names += (names.empty() ? "" : ", ") + widget.kind;
    throw Failure("no widget '" + name + "'; there are " + names);
}

void requireFamily(const widgetkit::WidgetDescription& widget, widgetkit::WidgetFamily family) {
    if (std::ranges::find(widget.families, family) == widget.families.end())
        throw Failure(
            "--family: " + widget.kind + " offers " + familyNames(widget.families) + ", not " +
            familyName(family));
}

}  // namespace zelto::cli
