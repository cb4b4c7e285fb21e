#include "tests/desktop/RunningDesktop.hpp"

#include <algorithm>
#include <cmath>
#include <regex>
#include <sstream>

#include <poll.h>

#include "foundation/Files.hpp"
#include "host/DesktopLayoutStore.hpp"
#include "host/EntryStore.hpp"
#include "host/Schedule.hpp"
#include "layout/Layout.hpp"
#include "records/JSONDecoder.hpp"
#include "tests/support/BusCall.hpp"
#include "tests/support/Confined.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Process.hpp"

namespace zelto::test {

using namespace records;
using namespace widgetkit;
namespace {

constexpr const char* snapshotFile = "Library/Application Support/Zelto/widget.json";

Child readerOf(const std::filesystem::path& fifo) {
    run({"/usr/bin/mkfifo", fifo});
    return Child({"/bin/sh", "-c", "exec cat 0<>\"$0\"", fifo});
}

}  // namespace

bool eventually(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < deadline) {
        if (condition()) return true;
        poll(nullptr, 0, 10);
    }
    return condition();
}

RunningDesktop::RunningDesktop(Display& display, bool isAccessible)
    : display_(display),
      isAccessible_(isAccessible),
      bus_(
          R"(<type>session</type><servicedir>/usr/share/dbus-1/services</servicedir><policy context="default"><allow user="*"/>)"
          R"(<allow own="*"/><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/></policy>)"),
      opened_(readerOf(folder_.path() / "opened")),
      connection_(bus::Address::at(bus_.address()), std::string(host::desktopService)) {
    const auto sample = run({programFolder() / "zelto", "snapshot", "sample"});
    folder_.write(snapshotFile, sample.output);
    const auto handler =
        folder_.write("handler", "#!/bin/sh\necho \"$1\" > '" + (folder() / "opened").string() + "'\n");
    std::filesystem::permissions(handler, std::filesystem::perms(0755));
    folder_.write(
        "data/applications/handler.desktop",
        "[Desktop Entry]\nType=Application\nName=Handler\nExec=" + handler.string() +
            " %u\nMimeType=x-scheme-handler/zelto;\n");
    folder_.write(
        "data/applications/mimeapps.list",
        "[Default Applications]\nx-scheme-handler/zelto=handler.desktop\n");
}

void RunningDesktop::forgetHandler() const {
    std::filesystem::remove_all(folder() / "data");
}

std::vector<std::string> RunningDesktop::environment() const {
    auto variables = display_.environment();
    for (const auto& [name, value] :
         {std::pair<std::string, std::string>{"XDG_CONFIG_HOME", folder() / "config"},
          {"XDG_CACHE_HOME", folder() / "cache"},
          {"XDG_DATA_HOME", folder() / "data"},
          {"HOME", folder()},
          {"DBUS_SESSION_BUS_ADDRESS", bus_.address()},
          {"TZ", "America/Sao_Paulo"},
          {"LC_ALL", "C.UTF-8"},
          {"NO_AT_BRIDGE", isAccessible_ ? "0" : "1"},
          {"LANG", "pt_BR.UTF-8"}})
        variables.push_back(name + "=" + value);
    return variables;
}

void RunningDesktop::place(const std::vector<host::PlacedWidget>& widgets) const {
    if (const auto saved = host::DesktopLayoutStore(folder() / "config/zelto").save({widgets}); !saved)
        throw std::runtime_error(saved.fault().text());
}

void RunningDesktop::launch(std::vector<std::string> arguments, const std::vector<std::string>& variables) {
    arguments.insert(arguments.begin(), {programFolder() / "zelto-desktop", "--home", folder()});
    auto all = environment();
    for (const std::string& variable : variables) {
        const std::string name = variable.substr(0, variable.find('=') + 1);
        std::erase_if(all, [&](const std::string& each) { return each.starts_with(name); });
        all.push_back(variable);
    }
    process_.emplace(std::move(arguments), std::move(all), folder() / "log");
}

void RunningDesktop::start(std::vector<std::string> arguments, const std::vector<std::string>& variables) {
    launch(std::move(arguments), variables);
    if (!eventually([this] { return call("list").has_value(); }))
        throw std::runtime_error("the desktop did not start: " + log());
}

bool RunningDesktop::stop() {
    process_->kill(SIGTERM);
    const int status = process_->wait();
    process_.reset();
    return status == 0;
}

namespace {

/// A line of the log from its level on.
std::string withoutTime(const std::string& line) {
    static const std::regex time("^[0-9-]{10} [0-9:]{8} ");
    return std::regex_replace(line, time, "");
}

/// Whether a line of the log says of the extension what is true of every program here.
bool tellsWhatIsLacked(const std::string& line) {
    return std::ranges::any_of(lackedHere(), [&](const std::string& name) {
        return line.ends_with("the widget extension is not fully confined: this system has no " + name);
    });
}

}  // namespace

void RunningDesktop::screenSaver(bool isActive) const {
    const auto emitted =
        run({"gdbus",
             "emit",
             "--session",
             "--object-path",
             "/org/gnome/ScreenSaver",
             "--signal",
             "org.gnome.ScreenSaver.ActiveChanged",
             isActive ? "true" : "false"},
            "",
            environment());
    if (emitted.status != 0) throw std::runtime_error(emitted.errors);
}

bool RunningDesktop::tellsSeen(bool isSeen) const {
    return propertyOnBus(bus_.address(), std::string(host::desktopService), "seen") ==
           (isSeen ? "(<true>,)\n" : "(<false>,)\n");
}

std::string RunningDesktop::log() const {
    std::istringstream lines(readFile(folder() / "log").value_or(""));
    std::string out;
    for (std::string line; std::getline(lines, line);)
        if (!tellsWhatIsLacked(line)) out += withoutTime(line) + "\n";
    return out;
}

bus::Result<bus::Values> RunningDesktop::call(const std::string& method, const bus::Values& arguments) {
    return connection_.call(method, arguments, std::chrono::seconds(10));
}

Finished RunningDesktop::zelto(std::vector<std::string> words) const {
    words.insert(words.begin(), programFolder() / "zelto");
    auto variables = environment();
    if (const char* options = std::getenv("LSAN_OPTIONS"))
        variables.push_back(std::string("LSAN_OPTIONS=") + options);
    return run(words, "", variables);
}

std::vector<host::PlacedWidget> RunningDesktop::widgets() {
    const auto outcome = call("list");
    if (!outcome) throw std::runtime_error(outcome.fault().text);
    return decodeJSON<std::vector<host::PlacedWidget>>(std::get<std::string>(outcome->front())).value();
}

std::optional<ArchivedEntry> RunningDesktop::entry(const host::PlacedWidget& widget) const {
    auto stored = host::EntryStore(folder() / "cache/zelto/widgets").load(widget.look());
    if (!stored) return std::nullopt;
    host::Schedule schedule;
    schedule.add(widget.id, std::move(stored));
    schedule.at(Date::now());
    return *schedule.shown(widget.id);
}

layout::DisplayList RunningDesktop::displayList(const host::PlacedWidget& widget) {
    const auto shown = entry(widget);
    if (!shown) throw std::runtime_error("no timeline for " + widget.kind);
    const ui::Size size = sizeOf(widget.family);
    return layout::layOut(shown->view, {.size = size, .now = Date::now()}, renderer_.measuring());
}

bool RunningDesktop::isSeen(
    const host::PlacedWidget& widget, double zoom, double pixelsPerUnit, double tolerance, int monitorLeft) {
    if (!entry(widget)) return false;
    const auto wanted = displayList(widget);
    const double scale = zoom * pixelsPerUnit;
    const auto picture = renderer_.draw(wanted, scale, drawing::Corners::rounded);
    const auto shot = display_.screenshot();
    const auto edge = [&](std::int64_t tile) {
        const double unit = std::round(zoom * (16 + static_cast<double>(tile) * host::tilePitch));
        return static_cast<int>(std::lround(unit * pixelsPerUnit));
    };
    const int left = monitorLeft + edge(widget.column), top = display_.panel() + edge(widget.row);
    if (left + picture.width > shot.width || top + picture.height > shot.height) return false;
    const auto isCountdown = [&](int x, int y) {
        for (const auto& item : wanted.items)
            if (const auto* countdown = std::get_if<layout::PlacedCountdown>(&item)) {
                const layout::Rect& frame = countdown->text.frame;
                if (layout::Rect{frame.x - 8, frame.y - 2, frame.width + 16, frame.height + 4}.contains(
                        {x / scale, y / scale}))
                    return true;
            }
        return false;
    };
    double difference = 0, compared = 0;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const std::uint32_t expected = picture.at(x, y), found = shot.at(left + x, top + y);
            // What is translucent has the background in it.
            if (expected >> 24 != 0xFF || isCountdown(x, y)) continue;
            if (tolerance == 0 && expected != found) return false;
            for (const int shift : {0, 8, 16}) {
                const auto channel = [shift](std::uint32_t pixel) {
                    return static_cast<int>(pixel >> shift & 0xFF);
                };
                difference += std::abs(channel(expected) - channel(found));
                ++compared;
            }
        }
    return difference <= tolerance * compared;
}

bool RunningDesktop::allSeen() {
    for (const auto& widget : widgets())
        if (!isSeen(widget)) return false;
    return true;
}

std::pair<int, int> RunningDesktop::onDisplay(const host::PlacedWidget& widget, layout::Point point) {
    const auto edge = [](std::int64_t tile, double within) {
        return static_cast<int>(16 + static_cast<double>(tile) * host::tilePitch + within);
    };
    return {edge(widget.column, point.x), edge(widget.row, point.y)};
}

}  // namespace zelto::test
