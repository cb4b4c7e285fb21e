#include "cli/Extension.hpp"

#include <algorithm>
#include <cctype>
#include <chrono>

#include "cli/Failure.hpp"
#include "cli/Input.hpp"
#include "platform/foundation/Environment.hpp"

namespace zelto::cli {
namespace {

constexpr std::chrono::seconds deadline{10};

host::ExtensionProcess startProcess(const ExtensionOptions& options) {
    std::vector<std::string> arguments;
    if (!options.home.empty()) arguments.insert(arguments.end(), {"--home", options.home});
    if (!options.machine.empty()) arguments.insert(arguments.end(), {"--machine", options.machine});
    if (!options.now.empty()) arguments.insert(arguments.end(), {"--now", options.now});
    std::string why;
    auto process = host::ExtensionProcess::start(
        options.program.empty() ? host::installedExtension() : std::filesystem::path(options.program),
        arguments,
        why);
    if (!process) throw Failure(why);
    return *std::move(process);
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

Extension::Extension(const ExtensionOptions& options) : process_(startProcess(options)) {}

std::vector<Reply> Extension::ask(std::vector<Request> requests) {
    const Environment environment = Environment::current();
    for (Request& request : requests) {
        request.locale = environment.locale;
        request.timeZone = environment.timeZone;
    }
    std::vector<Reply> replies;
    for (auto& outcome : process_.exchange(std::move(requests), deadline)) {
        if (!outcome.reply) throw Failure(outcome.error);
        replies.push_back(*std::move(outcome.reply));
    }
    return replies;
}

std::vector<WidgetDescription> Extension::widgets() {
    auto reply = ask({Request{.request = RequestKind::bundle}}).front();
    if (!reply.widgets) throw Failure("the widget extension did not list its widgets");
    return *std::move(reply.widgets);
}

const WidgetDescription& findWidget(const std::vector<WidgetDescription>& widgets, const std::string& name) {
    std::string names;
    for (const WidgetDescription& widget : widgets) {
        if (widget.kind == name || memberName(widget.kind) == memberName(name)) return widget;
        names += (names.empty() ? "" : ", ") + widget.kind;
    }
    throw Failure("no widget '" + name + "'; there are " + names);
}

void requireFamily(const WidgetDescription& widget, WidgetFamily family) {
    if (std::ranges::find(widget.families, family) == widget.families.end())
        throw Failure(
            "--family: " + widget.kind + " offers " + familyNames(widget.families) + ", not " +
            familyName(family));
}

}  // namespace zelto::cli
