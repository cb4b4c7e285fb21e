#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "drawing/Picture.hpp"

namespace zelto::test {

/// A display of the test's own, with a pointer and a keyboard.
class Display {
  public:
    static constexpr int width = 1400, height = 900;

    virtual ~Display() = default;
    /// What a program needs to find it.
    virtual std::vector<std::string> environment() const = 0;
    /// Opaque pixels.
    virtual drawing::Picture screenshot() = 0;
    /// How many rows of them are the desktop's own panel.
    virtual int panel() const { return 0; }

    enum class Button { primary, secondary };
    virtual void move(int x, int y) = 0;
    virtual void press(Button button) = 0;
    virtual void release(Button button) = 0;
    /// A key by its X name, modifiers before it: "Tab", "ctrl+Right".
    virtual void key(const std::string& name) = 0;

    void click(int x, int y, Button button = Button::primary) {
        move(x, y);
        press(button);
        release(button);
    }
};

/// A Wayland compositor that takes commands.
class Compositor : public Display {
  public:
    virtual void command(std::vector<std::string> words) = 0;
};

/// A display of two monitors, of which the second comes and goes.
class Monitors : public Display {
  public:
    virtual void plugIn() = 0;
    virtual void unplug() = 0;
    /// Off, all of them take no frames.
    virtual void turn(bool isOn) = 0;
    /// The connector of the one that came last.
    virtual std::string second() const = 0;
};

/// Small ones, one with a compositor; a tiling one; those of two desktops, one with its icons.
enum class Manager { openbox, picom, fluxbox, i3, xfwm, kwin };
/// X11: a frame buffer in memory and a window manager; with two monitors, side by side, a real server.
std::unique_ptr<Display> startX11(Manager manager = Manager::openbox, int monitors = 1);
/// Wayland without a layer for widgets: Weston, with an X server in it.
std::unique_ptr<Display> startWeston();
/// Wayland: a compositor without a screen; `scale` is its output's.
std::unique_ptr<Compositor> startWayland(const std::string& scale = "1");
/// One with two of them, side by side.
std::unique_ptr<Compositor> startTwoOutputs();

/// Wayland, with one monitor at first.
std::unique_ptr<Monitors> startMonitors();

}  // namespace zelto::test
