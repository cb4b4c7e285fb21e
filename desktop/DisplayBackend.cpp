#include "DisplayBackend.hpp"

#include <algorithm>
#include <cmath>
#include <gdk/gdkwayland.h>
#include <gdk/gdkx.h>
#include <gtk-layer-shell.h>
#include <utility>
#include <wayland-client.h>

namespace zelto::desktop {
namespace {

constexpr double border = 16;  // points between the monitor's edge and the tiles

/// Whether the window manager says that it knows a hint.
bool supports(const char* name) {
    return gdk_x11_screen_supports_net_wm_hint(
               gdk_screen_get_default(), gdk_atom_intern_static_string(name)) != FALSE;
}

/// Where no window manager tells what it knows, one may still come.
bool managerKnowsDesktops() {
    return !supports("_NET_WM_WINDOW_TYPE") || supports("_NET_WM_WINDOW_TYPE_DESKTOP");
}

GtkLayerShellKeyboardMode onDemand() {
    return gtk_layer_get_protocol_version() >= 4 ? GTK_LAYER_SHELL_KEYBOARD_MODE_ON_DEMAND
                                                 : GTK_LAYER_SHELL_KEYBOARD_MODE_NONE;
}

WindowKind windowKindOf(GdkDisplay* display) {
    if (GDK_IS_X11_DISPLAY(display))
        return managerKnowsDesktops() ? WindowKind::hints : WindowKind::unmanaged;
    return gtk_layer_is_supported() ? WindowKind::layerShell : WindowKind::plain;
}

/// What the desktop asks texts to be enlarged by: how fractional scales are told on X11.
double zoomOf(GdkScreen* screen) {
    const double resolution = gdk_screen_get_resolution(screen);
    return resolution > 0 ? std::clamp(resolution / 96, 0.5, 4.0) : 1;
}

/// Its connector, such as "DP-1"; where the display does not tell that, its model.
std::string nameOf(GdkMonitor* monitor) {
    GdkDisplay* display = gdk_monitor_get_display(monitor);
    int index = 0;
    while (index < gdk_display_get_n_monitors(display) && gdk_display_get_monitor(display, index) != monitor)
        ++index;
    // The only call that tells it has no successor in this version of the toolkit.
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    gchar* connector = gdk_screen_get_monitor_plug_name(gdk_display_get_default_screen(display), index);
    G_GNUC_END_IGNORE_DEPRECATIONS
    const char* model = gdk_monitor_get_model(monitor);
    std::string name = connector ? connector : model ? model : "";
    g_free(connector);
    return name;
}

MonitorArea areaOf(GdkMonitor* monitor) {
    GdkRectangle area;
    gdk_monitor_get_workarea(monitor, &area);
    return {monitor, nameOf(monitor), area.x, area.y, area.width, area.height};
}

/// Of a length in the display's units, within which so many points stay free on both sides.
std::int64_t tilesIn(int length, double zoom, double free) {
    const double room = length / zoom - 2 * free + host::tileGap;
    return std::max<std::int64_t>(1, static_cast<std::int64_t>(room / host::tilePitch));
}

}  // namespace

DisplayBackend::DisplayBackend() : windowKind_(windowKindOf(gdk_display_get_default())) {
    configure(std::nullopt, 0);
    refresh();
}

bool DisplayBackend::configure(std::optional<double> zoom, double margin) {
    margin_ = margin;
    const double wanted = zoom.value_or(zoomOf(gdk_screen_get_default()));
    return std::exchange(zoom_, wanted) != wanted;
}

bool DisplayBackend::isHighContrast() {
    gchar* theme = nullptr;
    g_object_get(gtk_settings_get_default(), "gtk-theme-name", &theme, nullptr);
    const bool isHigh = theme && g_ascii_strncasecmp(theme, "HighContrast", 12) == 0;
    g_free(theme);
    return isHigh;
}

bool DisplayBackend::isTranslucent() const {
    return gdk_screen_is_composited(gdk_screen_get_default());
}

bool DisplayBackend::refresh() {
    GdkDisplay* display = gdk_display_get_default();
    if (gdk_display_get_n_monitors(display) == 0) {
        for (MonitorArea& area : areas_) area.monitor = nullptr;
        return false;
    }
    GdkMonitor* primary = gdk_display_get_primary_monitor(display);
    areas_.clear();
    for (int i = 0; i < gdk_display_get_n_monitors(display); ++i) {
        GdkMonitor* monitor = gdk_display_get_monitor(display, i);
        areas_.insert(monitor == primary ? areas_.begin() : areas_.end(), areaOf(monitor));
    }
    return true;
}

host::Monitors DisplayBackend::monitors() const {
    host::Monitors out;
    for (const MonitorArea& area : areas_) out.push_back({area.name, columns(area), rows(area)});
    return out;
}

std::optional<std::size_t> DisplayBackend::monitorAt(int x, int y) const {
    const GdkMonitor* monitor = gdk_display_get_monitor_at_point(gdk_display_get_default(), x, y);
    const auto found = std::ranges::find(areas_, monitor, &MonitorArea::monitor);
    if (found == areas_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - areas_.begin());
}

std::optional<std::string> DisplayBackend::shortcoming() const {
    if (windowKind_ != WindowKind::hints) return std::nullopt;
    if (!supports("_NET_WM_STATE") || supports("_NET_WM_WINDOW_TYPE")) return std::nullopt;
    return "this window manager knows no kinds of windows: it places widgets itself, like any others";
}

std::optional<std::size_t> DisplayBackend::beside(std::size_t from, int right, int down) const {
    const MonitorArea& here = areas_[from];
    std::optional<std::size_t> nearest;
    double least = 0;
    for (std::size_t i = 0; i < areas_.size(); ++i) {
        const double across = areas_[i].x + areas_[i].width / 2.0 - (here.x + here.width / 2.0);
        const double below = areas_[i].y + areas_[i].height / 2.0 - (here.y + here.height / 2.0);
        const double along = right * across + down * below;
        const double aside = std::abs(right != 0 ? below : across);
        // More to that side than to another.
        if (i == from || along <= 0 || aside > along || (nearest && along + aside >= least)) continue;
        nearest = i;
        least = along + aside;
    }
    return nearest;
}

std::int64_t DisplayBackend::columns(const MonitorArea& area) const {
    return tilesIn(area.width, zoom_, border + margin_);
}

std::int64_t DisplayBackend::rows(const MonitorArea& area) const {
    return tilesIn(area.height, zoom_, border + margin_);
}

layout::Point DisplayBackend::position(host::Cell cell) const {
    return {
        zoom_ * (border + margin_ + static_cast<double>(cell.column) * host::tilePitch),
        zoom_ * (border + margin_ + static_cast<double>(cell.row) * host::tilePitch)};
}

host::Slot DisplayBackend::slotAt(
    std::size_t index, layout::Point point, widgetkit::WidgetFamily family) const {
    const MonitorArea& area = areas_[index];
    const host::Span span = host::spanOf(family);
    const auto nearest = [this](double position, std::int64_t tiles, std::int64_t covered) {
        const auto tile =
            static_cast<std::int64_t>(std::lround((position / zoom_ - border - margin_) / host::tilePitch));
        return std::clamp<std::int64_t>(tile, 0, std::max<std::int64_t>(tiles - covered, 0));
    };
    return {index, {nearest(point.x, columns(area), span.columns), nearest(point.y, rows(area), span.rows)}};
}

void DisplayBackend::prepare(Gtk::Window& window, const std::string& name, bool takesKeys) const {
    window.set_decorated(false);
    window.set_resizable(false);
    window.set_app_paintable(true);
    // Where nothing composes windows, such a visual would only hide from them that others cover them.
    if (isTranslucent())
        if (const auto visual = window.get_screen()->get_rgba_visual())
            gtk_widget_set_visual(GTK_WIDGET(window.gobj()), visual->gobj());
    if (windowKind_ == WindowKind::layerShell) {
        gtk_layer_init_for_window(window.gobj());
        gtk_layer_set_namespace(window.gobj(), name.c_str());
        gtk_layer_set_layer(window.gobj(), GTK_LAYER_SHELL_LAYER_BOTTOM);
        gtk_layer_set_anchor(window.gobj(), GTK_LAYER_SHELL_EDGE_LEFT, TRUE);
        gtk_layer_set_anchor(window.gobj(), GTK_LAYER_SHELL_EDGE_TOP, TRUE);
        if (takesKeys) gtk_layer_set_keyboard_mode(window.gobj(), onDemand());
        return;
    }
    if (windowKind_ == WindowKind::unmanaged) {
        window.signal_realize().connect([&window] { window.get_window()->set_override_redirect(true); });
        return;
    }
    if (windowKind_ != WindowKind::hints) return;
    window.set_type_hint(Gdk::WINDOW_TYPE_HINT_DESKTOP);
    window.set_keep_below(true);
    window.stick();
    window.set_skip_taskbar_hint(true);
    window.set_skip_pager_hint(true);
    window.set_accept_focus(takesKeys);
    window.set_focus_on_map(false);
}

void DisplayBackend::place(Gtk::Window& window, host::Slot slot) const {
    const MonitorArea& area = areas_[slot.monitor];
    const layout::Point position = this->position(slot.cell);
    const int x = static_cast<int>(std::lround(position.x)), y = static_cast<int>(std::lround(position.y));
    if (windowKind_ == WindowKind::layerShell) {
        gtk_layer_set_monitor(window.gobj(), area.monitor);
        gtk_layer_set_margin(window.gobj(), GTK_LAYER_SHELL_EDGE_LEFT, x);
        gtk_layer_set_margin(window.gobj(), GTK_LAYER_SHELL_EDGE_TOP, y);
    } else {
        window.move(area.x + x, area.y + y);
    }
}

void DisplayBackend::keepBelow(Gtk::Window& window) const {
    if (windowKind_ != WindowKind::unmanaged) return;
    if (const auto own = window.get_window()) own->lower();
}

void DisplayBackend::giveKeys(Gtk::Window& window) const {
    const auto own = window.get_window();
    if (!own) return;
    if (windowKind_ == WindowKind::layerShell) {
        // Compositors look for whom they give the keys by themselves among the upper layers only.
        gtk_layer_set_layer(window.gobj(), GTK_LAYER_SHELL_LAYER_TOP);
        gtk_layer_set_keyboard_mode(window.gobj(), GTK_LAYER_SHELL_KEYBOARD_MODE_EXCLUSIVE);
        return;
    }
    if (!hasOneSpace()) {
        window.present();
        return;
    }
    const guint32 time = gdk_x11_get_server_time(own->gobj());
    if (windowKind_ == WindowKind::hints) {
        window.present(time);
        return;
    }
    GdkDisplay* display = gdk_display_get_default();
    // It may have gone.
    gdk_x11_display_error_trap_push(display);
    XSetInputFocus(
        gdk_x11_display_get_xdisplay(display),
        gdk_x11_window_get_xid(own->gobj()),
        RevertToPointerRoot,
        time);
    gdk_x11_display_error_trap_pop_ignored(display);
}

void DisplayBackend::letKeysGo(Gtk::Window& window) const {
    const auto own = window.get_window();
    if (windowKind_ != WindowKind::layerShell || !own) return;
    gtk_layer_set_keyboard_mode(window.gobj(), GTK_LAYER_SHELL_KEYBOARD_MODE_NONE);
    // The compositor is to know it before the other window comes.
    wl_surface_commit(gdk_wayland_window_get_wl_surface(own->gobj()));
    gdk_display_sync(gdk_display_get_default());
}

void DisplayBackend::keysCame(Gtk::Window& window) const {
    if (windowKind_ != WindowKind::layerShell) return;
    gtk_layer_set_layer(window.gobj(), GTK_LAYER_SHELL_LAYER_BOTTOM);
    gtk_layer_set_keyboard_mode(window.gobj(), onDemand());
}

}  // namespace zelto::desktop
