#include "tests/desktop/Display.hpp"

#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <stdexcept>

#include "foundation/Files.hpp"
#include "tests/desktop/Nobody.hpp"
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

class X11 : public Display {
  public:
    explicit X11(Manager manager)
        : server_(
              {"Xvfb",
               "-displayfd",
               "1",
               "-screen",
               "0",
               std::to_string(width) + "x" + std::to_string(height) + "x24",
               "-fbdir",
               folder_.path(),
               "-nolisten",
               "tcp",
               "-noreset"},
              {path}, folder_.path() / "server.log"),
          name_(":" + server_.line().value_or("")),
          manager_(
              manager == Manager::openbox
                  ? std::vector<std::string>{"openbox", "--sm-disable", "--startup", "echo ready"}
                  : std::vector<
                        std::string>{"i3", "-c", folder_.write("i3", "exec --no-startup-id echo ready\n")},
              {path, "DISPLAY=" + name_, "HOME=" + folder_.path().string()}, folder_.path() / "manager.log") {
        if (name_ == ":") throw std::runtime_error("no X server");
        std::optional<std::string> line;
        // It has complaints first.
        while ((line = manager_.line()) && *line != "ready") {
        }
        if (!line) throw std::runtime_error("no window manager");
    }

    std::vector<std::string> environment() const override {
        return {path, "DISPLAY=" + name_, "GDK_BACKEND=x11"};
    }
    drawing::Picture screenshot() override {
        return pictureOfDump(readFile(folder_.path() / "Xvfb_screen0").value());
    }
    void move(int x, int y) override { tool({"mousemove", std::to_string(x), std::to_string(y)}); }
    void press(Button button) override { tool({"mousedown", number(button)}); }
    void release(Button button) override { tool({"mouseup", number(button)}); }
    void key(const std::string& name) override { tool({"key", name}); }

  private:
    static std::string number(Button button) { return button == Button::primary ? "1" : "3"; }
    void tool(std::vector<std::string> words) const {
        words.insert(words.begin(), "/usr/bin/xdotool");
        const auto result = run(words, "", environment());
        if (result.status != 0) throw std::runtime_error(result.errors);
    }

    TemporaryFolder folder_;
    Child server_;
    std::string name_;
    Child manager_;
};

/// To the compositor with that socket.
void sendCommand(const std::string& socket, std::vector<std::string> words) {
    words.insert(words.begin(), {"/usr/bin/swaymsg", "-s", socket});
    const auto result = run(words, "", {path});
    if (result.status != 0) throw std::runtime_error(result.output + result.errors);
}

class Wayland : public Compositor {
  public:
    explicit Wayland(const std::string& scale)
        : compositor_(
              asNobody(folder_.path(), {"sway", "--config", folder_.write("config", configuration(scale))}),
              {path,
               "XDG_RUNTIME_DIR=" + folder_.path().string(),
               "WLR_BACKENDS=headless",
               "WLR_RENDERER=pixman",
               "WLR_LIBINPUT_NO_DEVICES=1"},
              folder_.path() / "compositor.log"),
          name_(compositor_.line().value_or("")),
          fifo_(folder_.path() / "devices"),
          devices_(startDevices()) {
        if (devices_.line() != "ready") throw std::runtime_error("no pointer and keyboard");
        input_ = std::fopen(fifo_.c_str(), "w");
    }
    ~Wayland() override {
        if (input_) std::fclose(input_);
    }

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
    void move(int x, int y) override { tell("move " + std::to_string(x) + " " + std::to_string(y)); }
    void press(Button button) override { tell("press " + code(button)); }
    void release(Button button) override { tell("release " + code(button)); }
    void key(const std::string& name) override {
        // By the kernel's codes, with shift as 1 and control as 4.
        static const std::map<std::string, std::string> codes{
            {"Tab", "15 0"},
            {"Return", "28 0"},
            {"Up", "103 0"},
            {"Down", "108 0"},
            {"Left", "105 0"},
            {"Right", "106 0"},
            {"Escape", "1 0"},
            {"Delete", "111 0"},
            {"minus", "12 0"},
            {"plus", "13 1"},
            {"ctrl+Right", "106 4"}};
        tell("key " + codes.at(name));
    }

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
    static std::string configuration(const std::string& scale) {
        return "output HEADLESS-1 resolution " + std::to_string(width) + "x" + std::to_string(height) +
               " position 0 0 scale " + scale +
               " bg #102030 solid_color\nseat * hide_cursor 100\ndefault_border none\n" +
               "xwayland disable\nexec echo $WAYLAND_DISPLAY\n";
    }
    static std::string code(Button button) { return button == Button::primary ? "272" : "273"; }

    /// They read from a FIFO, which the shell opens for them.
    Child startDevices() {
        run({"/usr/bin/mkfifo", fifo_});
        return Child(
            {"/bin/sh",
             "-c",
             "exec \"$0\" " + std::to_string(width) + " " + std::to_string(height) + " 0<>\"$1\"",
             programFolder() / "virtual-input",
             fifo_},
            environment(),
            folder_.path() / "devices.log");
    }
    void tell(const std::string& command) {
        std::fputs((command + "\n").c_str(), input_);
        std::fflush(input_);
        if (devices_.line() != "ok") throw std::runtime_error("the devices do not answer");
    }

    TemporaryFolder folder_;
    Child compositor_;
    std::string name_;
    std::string fifo_;
    Child devices_;
    std::FILE* input_ = nullptr;
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

std::unique_ptr<Display> startX11(Manager manager) {
    return std::make_unique<X11>(manager);
}

std::unique_ptr<Monitors> startMonitors() {
    return std::make_unique<NestedWayland>();
}

std::unique_ptr<Compositor> startWayland(const std::string& scale) {
    return std::make_unique<Wayland>(scale);
}

}  // namespace zelto::test
