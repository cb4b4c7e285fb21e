// What wakes the desktop: the clock, files, monitors, the session, and the desktop's own look.

#include <set>

#include "Desktop.hpp"

namespace zelto::desktop {
namespace {

/// An upgrade of the zones' data counts as done when nothing has changed for so long.
constexpr double upgradeSeconds = 2;
/// And a new folder as filled.
constexpr double settledSeconds = 0.3;

}  // namespace

void Desktop::wakeAt(std::optional<Date> instant) {
    if (timer_.works())
        timer_.arm(instant);
    else if (instant)
        timerSource_ = runloop::MainSource::after(
            *instant - Date::now(), [this] { lookThen([this] { host_->wake(); }); });
}

void Desktop::lookThen(std::function<void()> then) {
    std::vector<GdkWindow*> windows;
    for (const auto& [id, window] : windows_)
        if (const auto surface = window->get_window()) windows.push_back(surface->gobj());
    frames_->ask(windows, std::move(then));
}

void Desktop::watchClock() {
    if (!timer_.works())
        options_.log("the system has no timer of the wall clock to give; a clock that is set is not noticed");
    else
        timerSource_ = runloop::MainSource::whenReadable(timer_.fd(), [this] {
            switch (timer_.take()) {
                case runloop::WallTimer::Event::clockSet: host_->environmentChanged(); break;
                case runloop::WallTimer::Event::expired: lookThen([this] { host_->wake(); }); break;
                case runloop::WallTimer::Event::none: break;
            }
        });
    zoneSource_ = runloop::MainSource::whenReadable(zone_.fd(), [this] {
        const auto changes = zone_.take();
        // What the extension has read of the zones stays with it: it is to start anew, also when the setting
        // is a file of its own; after an upgrade, once all is in place.
        if (changes.setting) {
            supervisor_->restart();
            host_->environmentChanged();
        }
        if (changes.data)
            zoneDataSource_ = runloop::MainSource::after(upgradeSeconds, [this] {
                supervisor_->restart();
                host_->environmentChanged();
            });
    });
}

void Desktop::watchPaths() {
    if (!paths_.works())
        options_.log("the system has no watch of files to give; what changes in them is seen when it is due");
    paths_.follow({}, {host_->layoutFile()});
    pathSource_ = runloop::MainSource::whenReadable(paths_.fd(), [this] {
        const auto changes = paths_.take();
        if (changes.files.contains(host_->layoutFile())) host_->takeOverEdits();
        if (!changes.folders) {
            lookThen([this, files = changes.files] { host_->filesChanged(files); });
            return;
        }
        supervisor_->restart();
        // What is put into a new folder comes a little later than it.
        folderSettled_ = runloop::MainSource::after(settledSeconds, [this] {
            supervisor_->restart();
            host_->reloadAll();
        });
    });
}

void Desktop::watchSight() {
    const auto tell = [this] {
        for (const auto& [id, window] : windows_) window->tellSeen();
    };
    covers_ = std::make_unique<CoverWatch>(gdk_display_get_default(), [this, tell] {
        for (const auto& [id, window] : windows_) backend_.keepBelow(*window);
        tell();
    });
    frames_ = std::make_unique<FrameWatch>(gdk_display_get_default(), tell);
    session_ = std::make_unique<host::SessionWatch>(
        options_.bus,
        bus::Address::system(),
        host::SessionWatch::Seams{
            .changed =
                [this, tell](bool isSeen) {
                    isScreenSeen_ = isSeen;
                    tell();
                },
            .woke = [this] { host_->freshen(); }});
}

void Desktop::watchMonitors() {
    const auto changed = [](gpointer self) { static_cast<Desktop*>(self)->monitorsChanged(); };
    GdkDisplay* display = gdk_display_get_default();
    GdkScreen* screen = gdk_screen_get_default();
    g_signal_connect_swapped(display, "monitor-added", G_CALLBACK(+changed), this);
    g_signal_connect_swapped(display, "monitor-removed", G_CALLBACK(+changed), this);
    g_signal_connect_swapped(screen, "monitors-changed", G_CALLBACK(+changed), this);
    g_signal_connect_swapped(screen, "size-changed", G_CALLBACK(+changed), this);
}

void Desktop::watchAppearance() {
    const auto changed = [](gpointer self) { static_cast<Desktop*>(self)->appearanceChanged(); };
    GObject* settings = G_OBJECT(gtk_settings_get_default());
    g_signal_connect_swapped(settings, "notify::gtk-theme-name", G_CALLBACK(+changed), this);
    GObject* screen = G_OBJECT(gdk_screen_get_default());
    g_signal_connect_swapped(screen, "notify::resolution", G_CALLBACK(+changed), this);
}

void Desktop::appearanceChanged() {
    const auto settings = host_->settings();
    const bool isHighContrast = DisplayBackend::isHighContrast();
    const bool isOther =
        backend_.configure(options_.zoom ? options_.zoom : settings.scale, settings.margin.value_or(0));
    if (std::exchange(isHighContrast_, isHighContrast) != isHighContrast || isOther) {
        std::set<std::string> all;
        for (const auto& [id, window] : windows_) all.insert(id);
        for (const std::string& id : all) close(id);
        closed_.reset();
        undoLines_.clear();
    }
    monitorsChanged();
}

void Desktop::monitorsChanged() {
    // Without a monitor windows stay as they are, hidden where the compositor closed them.
    if (backend_.refresh()) host_->setMonitors(backend_.monitors());
}

}  // namespace zelto::desktop
