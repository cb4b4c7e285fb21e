#include "tests/desktop/GnomeShell.hpp"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <stdexcept>

#include <cairo.h>

#include "foundation/Files.hpp"
#include "foundation/Handle.hpp"
#include "tests/desktop/Nobody.hpp"
#include "tests/desktop/RunningDesktop.hpp"

namespace zelto::test {
namespace {

std::vector<std::string> variablesIn(const std::filesystem::path& folder) {
    std::vector<std::string> out{
        "PATH=/usr/bin:/bin",
        "LIBGL_ALWAYS_SOFTWARE=1",
        "GSETTINGS_BACKEND=memory",
        "NO_AT_BRIDGE=1",
        "LC_ALL=C.UTF-8",
        "XDG_SESSION_TYPE=wayland"};
    for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
        out.push_back(std::string(name) + "=" + folder.string());
    return out;
}

Child startBus(
    const std::filesystem::path& folder, const std::vector<std::string>& variables, const char* name) {
    Child bus(
        asNobody(
            folder,
            {"dbus-daemon",
             "--session",
             "--nofork",
             "--print-address=1",
             "--address=unix:path=" + (folder / name).string()}),
        variables,
        folder / "bus.log");
    if (!bus.line()) throw std::runtime_error("no bus");
    return bus;
}

/// What comes with the shell: there is a bus for it, and one in the place of the system's, with nobody on it.
std::vector<std::string> withBuses(std::vector<std::string> variables, const std::filesystem::path& folder) {
    variables.push_back("DBUS_SESSION_BUS_ADDRESS=unix:path=" + (folder / "bus").string());
    variables.push_back("DBUS_SYSTEM_BUS_ADDRESS=unix:path=" + (folder / "system-bus").string());
    return variables;
}

}  // namespace

GnomeShell::GnomeShell()
    : variables_(withBuses(variablesIn(folder_.path()), folder_.path())),
      systemBus_(startBus(folder_.path(), variables_, "system-bus")),
      bus_(startBus(folder_.path(), variables_, "bus")),
      shell_(startShell()) {
    // On a busy machine it now and then hangs for good while it starts, and answers nobody.
    if (!isReady()) shell_ = startShell();
    if (!isReady()) throw std::runtime_error(readFile(logFile()).value_or("no shell"));
    // What it misses in this session it says, and goes on saying until somebody moves.
    evaluate(
        "Main.messageTray.bannerBlocked = true; Main.messageTray.getSources().forEach(s => s.destroy()); 1");
    showOverview(false);
    const std::string log = readFile(logFile()).value();
    std::smatch found;
    if (!std::regex_search(log, found, std::regex("public X11 display (:[0-9]+)")))
        throw std::runtime_error("no display for X11 programs");
    display_ = found[1];
    evaluate(
        "const {Clutter, GLib} = imports.gi; const seat = Clutter.get_default_backend().get_default_seat();"
        "globalThis.test = {pointer: seat.create_virtual_device(Clutter.InputDeviceType.POINTER_DEVICE),"
        "keyboard: seat.create_virtual_device(Clutter.InputDeviceType.KEYBOARD_DEVICE),"
        "now: () => GLib.get_monotonic_time()}; 1");
}

std::string GnomeShell::logFile() const {
    return folder_.path() / "shell.log";
}

Child GnomeShell::startShell() const {
    // What the former one wrote names its display.
    std::filesystem::remove(logFile());
    return Child(
        asNobody(
            folder_.path(),
            {"gnome-shell",
             "--headless",
             "--wayland",
             "--virtual-monitor",
             std::to_string(width) + "x" + std::to_string(height),
             "--unsafe-mode"}),
        variables_,
        logFile());
}

bool GnomeShell::isReady() const {
    // What is asked for while it starts is forgotten.
    return eventually([&] {
        return evaluate("Main.layoutManager._startingUp || Main.overview.animationInProgress") == "false";
    });
}

std::vector<std::string> GnomeShell::environment() const {
    std::string authority;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
        if (entry.path().filename().string().starts_with(".mutter-Xwaylandauth")) authority = entry.path();
    return {
        "PATH=/usr/bin:/bin",
        "XDG_RUNTIME_DIR=" + folder_.path().string(),
        "WAYLAND_DISPLAY=wayland-0",
        "DISPLAY=" + display_,
        "XAUTHORITY=" + authority,
        "XDG_SESSION_TYPE=wayland",
        "XDG_CURRENT_DESKTOP=GNOME"};
}

Finished GnomeShell::call(std::vector<std::string> words) const {
    words.insert(
        words.begin(),
        {"/usr/bin/gdbus",
         "call",
         "--timeout",
         "10",
         "--address",
         "unix:path=" + (folder_.path() / "bus").string()});
    return run(asNobody(folder_.path(), std::move(words)), "", variables_);
}

std::string GnomeShell::evaluate(const std::string& script) const {
    const auto done = call(
        {"--dest",
         "org.gnome.Shell",
         "--object-path",
         "/org/gnome/Shell",
         "--method",
         "org.gnome.Shell.Eval",
         script});
    // "(true, 'JSON')"
    const std::string begin = "(true, '", end = "')\n";
    if (!done.output.starts_with(begin) || !done.output.ends_with(end)) return done.output + done.errors;
    return done.output.substr(begin.size(), done.output.size() - begin.size() - end.size());
}

void GnomeShell::showOverview(bool isShown) const {
    evaluate(isShown ? "Main.overview.show()" : "Main.overview.hide()");
    const std::string wanted = isShown ? "true" : "false";
    if (!eventually([&] {
            return evaluate("Main.overview.animationInProgress ? null : Main.overview.visible") == wanted;
        }))
        throw std::runtime_error("the overview stays as it is");
}

drawing::Picture GnomeShell::screenshot() {
    const auto file = folder_.path() / "shot.png";
    const auto done = call(
        {"--dest",
         "org.gnome.Shell.Screenshot",
         "--object-path",
         "/org/gnome/Shell/Screenshot",
         "--method",
         "org.gnome.Shell.Screenshot.Screenshot",
         "false",
         "false",
         file});
    using Surface = Handle<cairo_surface_t, cairo_surface_destroy>;
    const Surface surface(cairo_image_surface_create_from_png(file.c_str()));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("no screenshot: " + done.errors);
    drawing::Picture out;
    out.width = cairo_image_surface_get_width(surface.get());
    out.height = cairo_image_surface_get_height(surface.get());
    const unsigned char* row = cairo_image_surface_get_data(surface.get());
    for (int y = 0; y < out.height; ++y, row += cairo_image_surface_get_stride(surface.get())) {
        const std::size_t begin = out.pixels.size();
        out.pixels.resize(begin + static_cast<std::size_t>(out.width));
        std::memcpy(&out.pixels[begin], row, static_cast<std::size_t>(out.width) * 4);
    }
    for (std::uint32_t& pixel : out.pixels) pixel |= 0xFF000000U;
    return out;
}

void GnomeShell::move(int x, int y) {
    evaluate(
        "test.pointer.notify_absolute_motion(test.now(), " + std::to_string(x) + ", " + std::to_string(y) +
        "); 1");
}

void GnomeShell::click(Button button, const std::string& state) const {
    evaluate(
        "test.pointer.notify_button(test.now(), imports.gi.Clutter." +
        std::string(button == Button::primary ? "BUTTON_PRIMARY" : "BUTTON_SECONDARY") +
        ", imports.gi.Clutter.ButtonState." + state + "); 1");
}

void GnomeShell::key(const std::string& name) {
    const auto plus = name.find('+');
    const std::string last = plus == std::string::npos ? name : name.substr(plus + 1);
    const auto tell = [this](const std::string& symbol, const char* state) {
        evaluate(
            "test.keyboard.notify_keyval(test.now(), imports.gi.Clutter.KEY_" + symbol +
            ", imports.gi.Clutter.KeyState." + state + "); 1");
    };
    if (plus != std::string::npos) tell("Control_L", "PRESSED");
    tell(last, "PRESSED");
    tell(last, "RELEASED");
    if (plus != std::string::npos) tell("Control_L", "RELEASED");
}

}  // namespace zelto::test
