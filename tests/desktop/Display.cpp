#include "tests/desktop/Display.hpp"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <cstring>
#include <fstream>
#include <optional>
#include <regex>
#include <set>
#include <stdexcept>

#include "foundation/Files.hpp"
#include "foundation/Handle.hpp"
#include "tests/desktop/Devices.hpp"
#include "tests/desktop/Nobody.hpp"
#include "tests/desktop/RunningDesktop.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {
namespace {

const std::string path = "PATH=/usr/bin:/bin:/usr/local/bin";

std::uint32_t bigEndian(const std::string& bytes, std::size_t index) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes.at(index * 4 + i));
    return value;
}

/// The frame buffer's file is an X window dump that is always current.
drawing::Picture pictureOfDump(const std::string& bytes) {
    constexpr std::size_t colorSize = 12;
    const std::size_t headerSize = bigEndian(bytes, 0);
    const std::size_t lineSize = bigEndian(bytes, 12), colors = bigEndian(bytes, 19);
    drawing::Picture out;
    out.width = static_cast<int>(bigEndian(bytes, 4));
    out.height = static_cast<int>(bigEndian(bytes, 5));
    out.pixels.resize(static_cast<std::size_t>(out.width) * static_cast<std::size_t>(out.height));
    const char* pixels = bytes.data() + headerSize + colors * colorSize;
    for (std::size_t y = 0; y < static_cast<std::size_t>(out.height); ++y)
        std::memcpy(
            &out.pixels[y * static_cast<std::size_t>(out.width)],
            pixels + y * lineSize,
            static_cast<std::size_t>(out.width) * 4);
    for (std::uint32_t& pixel : out.pixels) pixel |= 0xFF000000U;
    return out;
}

/// "P6 WIDTH HEIGHT 255" and three bytes a pixel.
drawing::Picture pictureOfPPM(const std::string& bytes) {
    drawing::Picture out;
    int depth = 0, header = 0;
    if (std::sscanf(bytes.c_str(), "P6 %d %d %d%n", &out.width, &out.height, &depth, &header) != 3)
        throw std::runtime_error("no screenshot");
    const std::size_t count = static_cast<std::size_t>(out.width) * static_cast<std::size_t>(out.height);
    const auto* at = reinterpret_cast<const unsigned char*>(bytes.data()) + header + 1;
    for (std::size_t i = 0; i < count; ++i, at += 3)
        out.pixels.push_back(0xFF000000U | static_cast<std::uint32_t>(at[0] << 16 | at[1] << 8 | at[2]));
    return out;
}

/// The programs that a desktop consists of.
std::vector<std::vector<std::string>> programsOf(Manager manager, const TemporaryFolder& folder) {
    switch (manager) {
        case Manager::openbox: return {{"openbox", "--sm-disable"}};
        case Manager::picom: return {{"openbox", "--sm-disable"}, {"picom", "--backend", "xrender"}};
        case Manager::fluxbox: return {{"fluxbox", "-no-slit", "-no-toolbar"}};
        case Manager::i3: return {{"i3", "-c", folder.write("i3.config", "\n")}};
        case Manager::xfwm:
            return {{"dbus-run-session", "--", "sh", "-c", "xfwm4 --compositor=off & exec xfdesktop"}};
        case Manager::kwin: return {{copyIn(folder.path(), "/usr/bin/kwin_x11")}};
    }
    return {};
}

constexpr const char* wideConfiguration = R"(Section "Device"
  Identifier "card"
  Driver "dummy"
  VideoRam 256000
EndSection
Section "Monitor"
  Identifier "monitor"
  HorizSync 5-1000
  VertRefresh 5-200
  Modeline "1400x900" 100 1400 1410 1420 1500 900 910 920 1000
EndSection
Section "Screen"
  Identifier "screen"
  Device "card"
  Monitor "monitor"
  DefaultDepth 24
  SubSection "Display"
    Depth 24
    Modes "1400x900"
    Virtual 2800 900
  EndSubSection
EndSection
Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoAddGPU" "false"
EndSection
)";

using XServer = Handle<::Display, XCloseDisplay>;

drawing::Picture pictureOfScreen(const std::string& name) {
    const XServer server(XOpenDisplay(name.c_str()));
    if (!server) throw std::runtime_error("no X server");
    const Window root = XDefaultRootWindow(server.get());
    XWindowAttributes all{};
    XGetWindowAttributes(server.get(), root, &all);
    XImage* image = XGetImage(
        server.get(),
        root,
        0,
        0,
        static_cast<unsigned>(all.width),
        static_cast<unsigned>(all.height),
        AllPlanes,
        ZPixmap);
    if (!image) throw std::runtime_error("no screenshot");
    drawing::Picture out{all.width, all.height, {}};
    for (int y = 0; y < all.height; ++y)
        for (int x = 0; x < all.width; ++x)
            out.pixels.push_back(0xFF000000U | static_cast<std::uint32_t>(XGetPixel(image, x, y)));
    XDestroyImage(image);
    return out;
}

/// Whether a window manager tells of itself.
bool isManaged(const std::string& name) {
    const XServer server(XOpenDisplay(name.c_str()));
    if (!server) return false;
    Atom type = 0;
    int format = 0;
    unsigned long count = 0, left = 0;
    unsigned char* value = nullptr;
    XGetWindowProperty(
        server.get(),
        XDefaultRootWindow(server.get()),
        XInternAtom(server.get(), "_NET_SUPPORTING_WM_CHECK", False),
        0,
        1,
        False,
        AnyPropertyType,
        &type,
        &format,
        &count,
        &left,
        &value);
    if (value) XFree(value);
    return count == 1;
}

class X11 : public Display {
  public:
    explicit X11(std::optional<Manager> manager, int monitors = 1)
        : isWide_(monitors > 1),
          server_(isWide_ ? wideServer() : server(), {path}, folder_.path() / "server.log"),
          name_(":" + server_.line().value_or("")) {
        if (name_ == ":") throw std::runtime_error("no X server");
        if (isWide_) plugIn();
        if (!manager) return;
        for (const auto& program : programsOf(*manager, folder_)) {
            programs_.push_back(std::make_unique<Child>(
                program,
                std::vector<std::string>{
                    path,
                    "DISPLAY=" + name_,
                    "HOME=" + folder_.path().string(),
                    "XDG_RUNTIME_DIR=" + folder_.path().string(),
                    "QT_QPA_PLATFORM=xcb",
                    "KWIN_COMPOSE=N"},
                folder_.path() / "manager.log"));
            if (!eventually([this] { return isManaged(name_); }))
                throw std::runtime_error("no window manager");
        }
    }

    std::vector<std::string> environment() const override {
        return {path, "DISPLAY=" + name_, "GDK_BACKEND=x11"};
    }
    drawing::Picture screenshot() override {
        return isWide_ ? pictureOfScreen(name_)
                       : pictureOfDump(readFile(folder_.path() / "Xvfb_screen0").value());
    }
    void move(int x, int y) override { tool({"mousemove", std::to_string(x), std::to_string(y)}); }
    void press(Button button) override { tool({"mousedown", number(button)}); }
    void release(Button button) override { tool({"mouseup", number(button)}); }
    void key(const std::string& name) override { tool({"key", name}); }

  protected:
    const std::filesystem::path& folder() const { return folder_.path(); }

  private:
    static std::string number(Button button) { return button == Button::primary ? "1" : "3"; }
    void tool(std::vector<std::string> words) const {
        words.insert(words.begin(), "/usr/bin/xdotool");
        const auto result = run(words, "", X11::environment());
        if (result.status != 0) throw std::runtime_error(result.errors);
    }

    std::vector<std::string> server() const {
        return {
            "Xvfb",
            "-displayfd",
            "1",
            "-screen",
            "0",
            std::to_string(width) + "x" + std::to_string(height) + "x24",
            "-fbdir",
            folder_.path(),
            "-nolisten",
            "tcp",
            "-noreset"};
    }
    /// The X server of real machines, with a card that shows nothing, to which two monitors are plugged.
    std::vector<std::string> wideServer() const {
        return {
            "Xorg",
            "-displayfd",
            "1",
            "-config",
            folder_.write("xorg.conf", wideConfiguration),
            "-logfile",
            folder_.path() / "xorg.log",
            "-nolisten",
            "tcp",
            "-noreset",
            "-novtswitch",
            "-sharevts"};
    }
    void plugIn() const {
        const std::string mode = std::to_string(width) + "x" + std::to_string(height);
        for (const auto& words :
             {std::vector<std::string>{"/usr/bin/xrandr", "--addmode", "DUMMY1", mode},
              {"/usr/bin/xrandr",
               "--output",
               "DUMMY0",
               "--mode",
               mode,
               "--output",
               "DUMMY1",
               "--mode",
               mode,
               "--right-of",
               "DUMMY0"},
              // Asks the outputs what is plugged to them, which others rely on.
              {"/usr/bin/xrandr"}}) {
            const auto done = run(words, "", X11::environment());
            if (done.status != 0) throw std::runtime_error(done.errors);
        }
    }

    TemporaryFolder folder_;
    bool isWide_;
    Child server_;
    std::string name_;
    std::vector<std::unique_ptr<Child>> programs_;
};

/// In a window that is as large as the X server around it.
class Weston : public X11 {
  public:
    Weston()
        : X11({}),
          weston_(
              {"weston",
               "--backend=x11-backend.so",
               "--use-pixman",
               "--width=" + std::to_string(width),
               "--height=" + std::to_string(height),
               "--xwayland",
               "--no-config",
               "--idle-time=0",
               "--socket=wayland-test"},
              variables(), folder() / "weston.log") {
        const std::regex announced("xserver listening on display (:[0-9]+)");
        const bool isThere = eventually([&] {
            const std::string log = readFile(folder() / "weston.log").value_or("");
            std::smatch found;
            if (!std::regex_search(log, found, announced)) return false;
            inner_ = found[1];
            return std::filesystem::exists(folder() / "wayland-test");
        });
        if (!isThere) throw std::runtime_error("no Weston");
    }

    std::vector<std::string> environment() const override {
        return {
            path,
            "XDG_RUNTIME_DIR=" + folder().string(),
            "WAYLAND_DISPLAY=wayland-test",
            "DISPLAY=" + inner_,
            "XDG_SESSION_TYPE=wayland"};
    }
    int panel() const override { return 32; }

  private:
    std::vector<std::string> variables() const {
        auto out = X11::environment();
        out.insert(out.end(), {"XDG_RUNTIME_DIR=" + folder().string(), "HOME=" + folder().string()});
        return out;
    }

    Child weston_;
    std::string inner_;
};

/// To the compositor with that socket.
void sendCommand(const std::string& socket, std::vector<std::string> words) {
    words.insert(words.begin(), {"/usr/bin/swaymsg", "-s", socket});
    const auto result = run(words, "", {path});
    if (result.status != 0) throw std::runtime_error(result.output + result.errors);
}

class Wayland : public Compositor {
  public:
    explicit Wayland(const std::string& scale, bool hasTwo = false)
        : compositor_(
              asNobody(
                  folder_.path(),
                  {"sway", "--config", folder_.write("config", configuration(scale, hasTwo))}),
              {path,
               "XDG_RUNTIME_DIR=" + folder_.path().string(),
               "WLR_BACKENDS=headless",
               std::string("WLR_HEADLESS_OUTPUTS=") + (hasTwo ? "2" : "1"),
               "WLR_RENDERER=pixman",
               "WLR_LIBINPUT_NO_DEVICES=1"},
              folder_.path() / "compositor.log"),
          name_(compositor_.line().value_or("")),
          devices_(folder_.path(), environment(), hasTwo ? 2 * width : width, height) {}

    std::vector<std::string> environment() const override {
        return {
            path,
            "XDG_RUNTIME_DIR=" + folder_.path().string(),
            "WAYLAND_DISPLAY=" + name_,
            "GDK_BACKEND=wayland"};
    }
    drawing::Picture screenshot() override {
        const auto result = run({"/usr/bin/grim", "-t", "ppm", "-"}, "", environment());
        return pictureOfPPM(result.output);
    }
    void move(int x, int y) override { devices_.move(x, y); }
    void press(Button button) override { devices_.press(button); }
    void release(Button button) override { devices_.release(button); }
    void key(const std::string& name) override { devices_.key(name); }

    void command(std::vector<std::string> words) override {
        sendCommand(*commandSockets().begin(), std::move(words));
    }

    const std::filesystem::path& folder() const { return folder_.path(); }
    /// The sockets through which compositors in its folder take commands.
    std::set<std::string> commandSockets() const {
        std::set<std::string> out;
        for (const auto& entry : std::filesystem::directory_iterator(folder()))
            if (entry.path().filename().string().starts_with("sway-ipc")) out.insert(entry.path());
        return out;
    }

  private:
    static std::string configuration(const std::string& scale, bool hasTwo) {
        const std::string second = "output HEADLESS-2 resolution " + std::to_string(width) + "x" +
                                   std::to_string(height) + " position " + std::to_string(width) +
                                   " 0 bg #203010 solid_color\n";
        return (hasTwo ? second : "") + "output HEADLESS-1 resolution " + std::to_string(width) + "x" +
               std::to_string(height) + " position 0 0 scale " + scale +
               " bg #102030 solid_color\nseat * hide_cursor 100\ndefault_border none\n" +
               "xwayland disable\nexec echo $WAYLAND_DISPLAY\n";
    }
    TemporaryFolder folder_;
    Child compositor_;
    std::string name_;
    Devices devices_;
};

/// A compositor in another's windows: each is a monitor, and closing one unplugs it.
class NestedWayland : public Monitors {
  public:
    NestedWayland()
        : compositor_(
              asNobody(around_.folder(), {"sway", "--config", configuration()}), variables(),
              around_.folder() / "inner.log"),
          name_(compositor_.line().value_or("")) {
        if (name_.empty()) throw std::runtime_error("no inner compositor");
    }

    std::vector<std::string> environment() const override {
        auto out = around_.environment();
        for (std::string& variable : out)
            if (variable.starts_with("WAYLAND_DISPLAY=")) variable = "WAYLAND_DISPLAY=" + name_;
        return out;
    }
    drawing::Picture screenshot() override {
        return pictureOfPPM(run({"/usr/bin/grim", "-t", "ppm", "-"}, "", environment()).output);
    }
    void move(int x, int y) override { around_.move(x, y); }
    void press(Button button) override { around_.press(button); }
    void release(Button button) override { around_.release(button); }
    void key(const std::string& name) override { around_.key(name); }

    void plugIn() override {
        sendCommand(innerSocket(), {"create_output"});
        ++plugged_;
    }
    void unplug() override {
        sendCommand(outerSocket_, {"[title=\"wlroots - WL-" + std::to_string(plugged_) + "\"]", "kill"});
    }
    /// Out of sight they are as good as off, which no compositor without a screen can turn them.
    void turn(bool isOn) override { sendCommand(outerSocket_, {"workspace", isOn ? "1" : "2"}); }
    std::string second() const override { return "WL-" + std::to_string(plugged_); }

  private:
    std::string configuration() const {
        const auto file = around_.folder() / "inner";
        std::ofstream(file)
            << "xwayland disable\noutput * bg #302010 solid_color\nexec echo $WAYLAND_DISPLAY\n";
        return file;
    }
    std::vector<std::string> variables() const {
        auto out = around_.environment();
        out.insert(out.end(), {"WLR_BACKENDS=wayland", "WLR_RENDERER=pixman"});
        return out;
    }
    std::string innerSocket() const {
        auto sockets = around_.commandSockets();
        sockets.erase(outerSocket_);
        return *sockets.begin();
    }

    Wayland around_{"1"};
    std::string outerSocket_ = *around_.commandSockets().begin();
    Child compositor_;
    std::string name_;
    int plugged_ = 1;
};

}  // namespace

std::unique_ptr<Display> startX11(Manager manager, int monitors) {
    return std::make_unique<X11>(manager, monitors);
}

std::unique_ptr<Display> startWeston() {
    return std::make_unique<Weston>();
}

std::unique_ptr<Monitors> startMonitors() {
    return std::make_unique<NestedWayland>();
}

std::unique_ptr<Compositor> startTwoOutputs() {
    return std::make_unique<Wayland>("1", true);
}

std::unique_ptr<Compositor> startWayland(const std::string& scale) {
    return std::make_unique<Wayland>(scale);
}

}  // namespace zelto::test
