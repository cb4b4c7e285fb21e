#pragma once

#include <cstdint>
#include <gtkmm/window.h>
#include <optional>
#include <string>
#include <vector>

#include "host/DesktopLayout.hpp"
#include "layout/Geometry.hpp"

namespace zelto::desktop {

/// How windows come to lie on this display: by the compositor's layers, by the window manager's hints, by
/// themselves where an X11 window manager knows no windows of a desktop, or as plain windows where none of it
/// is to be had.
enum class WindowKind { layerShell, hints, unmanaged, plain };

/// A monitor's room for widgets, in the display's own units.
struct MonitorArea {
    GdkMonitor* monitor;
    std::string name;
    int x, y, width, height;
    bool operator==(const MonitorArea&) const = default;
};

/// The display that the widgets are on. One point of a widget is `zoom` of the display's units.
class DisplayBackend {
  public:
    DisplayBackend();

    /// The widgets' scale, absent for the desktop's own, and the points to be left free along the edges.
    /// Returns whether windows are to be made anew for it.
    bool configure(std::optional<double> zoom, double margin);
    /// Whether the desktop asks for high contrast.
    static bool isHighContrast();

    WindowKind windowKind() const { return windowKind_; }
    /// Whether windows are put anywhere on all monitors together, as on X11.
    bool hasOneSpace() const {
        return windowKind_ == WindowKind::hints || windowKind_ == WindowKind::unmanaged;
    }
    /// What this display cannot do for widgets, for the log.
    std::optional<std::string> shortcoming() const;
    double zoom() const { return zoom_; }
    /// Whether windows can be seen through.
    bool isTranslucent() const;

    /// Looks at the monitors again. False while there is none; the last ones then keep their slots, so that
    /// what still speaks of them finds them.
    bool refresh();
    /// The monitors, the primary one first: slots count them.
    const std::vector<MonitorArea>& areas() const { return areas_; }
    /// How many tiles each has; at least one.
    host::Monitors monitors() const;
    /// The monitor that a point lies on, if it is one of those.
    std::optional<std::size_t> monitorAt(int x, int y) const;

    /// The monitor next to another one on a side, -1, 0 or 1 to the right and down.
    std::optional<std::size_t> beside(std::size_t monitor, int right, int down) const;

    /// Where a tile begins on its monitor, in the display's units.
    layout::Point position(host::Cell cell) const;
    /// The tile whose beginning is nearest to a point on the monitor, and on which the widget fits.
    host::Slot slotAt(std::size_t area, layout::Point point, widgetkit::WidgetFamily family) const;

    /// Makes a window that is not shown yet lie below all others; `name` is for compositors.
    void prepare(Gtk::Window& window, const std::string& name, bool takesKeys) const;
    /// Puts it there.
    void place(Gtk::Window& window, host::Slot slot) const;
    /// Keeps it below all windows where no window manager does, which is to be asked for whenever their order
    /// has changed.
    void keepBelow(Gtk::Window& window) const;
    /// Has the keys go to a window, since somebody turns to it; `keysCame` once they have.
    void giveKeys(Gtk::Window& window) const;
    void keysCame(Gtk::Window& window) const;
    /// Has a window give up the keys if it has them, for an ordinary one that opens; `keysCame` later.
    void letKeysGo(Gtk::Window& window) const;

  private:
    std::int64_t columns(const MonitorArea& area) const;
    std::int64_t rows(const MonitorArea& area) const;

    WindowKind windowKind_;
    double zoom_ = 1, margin_ = 0;
    std::vector<MonitorArea> areas_;
};

}  // namespace zelto::desktop
