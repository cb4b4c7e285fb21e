#include "Desktop.hpp"

#include <algorithm>
#include <set>

#include "Strings.hpp"
#include "system/PowerSources.hpp"

namespace zelto::desktop {
namespace {

/// An upgrade of the zones' data counts as done when nothing has changed for so long.
constexpr double upgradeSeconds = 2;
/// And a new folder as filled.
constexpr double settledSeconds = 0.3;

}  // namespace

Desktop::Desktop(DesktopOptions options)
    : options_(std::move(options)),
      backend_(options_.zoom),
      links_(options_.linkCommand),
      supervisor_(std::make_unique<host::ExtensionSupervisor>(options_.extension, options_.log)) {
    host::DesktopLayoutStore layouts(options_.folders.configuration);
    std::error_code error;
    isFirstStart_ = !std::filesystem::exists(layouts.file(), error);
    host_ = std::make_unique<host::WidgetHost>(
        seams(), std::move(layouts), host::EntryStore(options_.folders.cache / "widgets"), *this);

    watchClock();
    watchPaths();
    watchSight();
    if (const auto font = drawing::Renderer::substituteFont())
        options_.log("the font Inter is not installed; texts are drawn in " + *font);
    watchMonitors();
    host_->setMonitors(backend_.monitors());
    host_->start();
    for (const auto& [kind, family] : options_.additions) add(kind, family, std::nullopt);
    if (options_.showsGallery) showGallery();
    if (options_.takesKeys) focusNext();
}

Desktop::~Desktop() {
    supervisor_.reset();
}

host::HostSeams Desktop::seams() {
    return {
        .now = &Date::now,
        .environment = &texts::Environment::current,
        .ask =
            [this](
                std::vector<widgetkit::Request> requests, host::ExtensionSupervisor::Completion completion) {
                supervisor_->ask(std::move(requests), std::move(completion));
            },
        .wakeAt = [this](std::optional<Date> instant) { wakeAt(instant); },
        .log = options_.log,
        .onDisk =
            [this](std::function<Result<void>()> work, std::function<void(Result<void>)> then) {
                disk_.run([work = std::move(work), then = std::move(then)] {
                    host::postToMainThread([then, done = work()] { then(done); });
                });
            },
        .refresh = [this]() -> std::optional<double> {
            if (options_.refresh <= 0 || system::isOnBattery(options_.machine / "sys/class/power_supply"))
                return std::nullopt;
            return options_.refresh;
        },
        .soon =
            [this](std::function<void()> function) {
                soon_ = host::MainSource::after(0, std::move(function));
            }};
}

void Desktop::wakeAt(std::optional<Date> instant) {
    if (timer_.works())
        timer_.arm(instant);
    else if (instant)
        timerSource_ =
            host::MainSource::after(*instant - Date::now(), [this] { lookThen([this] { host_->wake(); }); });
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
        timerSource_ = host::MainSource::whenReadable(timer_.fd(), [this] {
            switch (timer_.take()) {
                case host::WallTimer::Event::clockSet: host_->environmentChanged(); break;
                case host::WallTimer::Event::expired: lookThen([this] { host_->wake(); }); break;
                case host::WallTimer::Event::none: break;
            }
        });
    zoneSource_ = host::MainSource::whenReadable(zone_.fd(), [this] {
        const auto changes = zone_.take();
        // What the extension has read of the zones stays with it: it is to start anew, also when the setting
        // is a file of its own; after an upgrade, once all is in place.
        if (changes.setting) {
            supervisor_->restart();
            host_->environmentChanged();
        }
        if (changes.data)
            zoneDataSource_ = host::MainSource::after(upgradeSeconds, [this] {
                supervisor_->restart();
                host_->environmentChanged();
            });
    });
}

void Desktop::watchPaths() {
    if (!paths_.works())
        options_.log("the system has no watch of files to give; what changes in them is seen when it is due");
    pathSource_ = host::MainSource::whenReadable(paths_.fd(), [this] {
        const auto changes = paths_.take();
        if (!changes.folders) {
            lookThen([this, files = changes.files] { host_->filesChanged(files); });
            return;
        }
        supervisor_->restart();
        // What is put into a new folder comes a little later than it.
        folderSettled_ = host::MainSource::after(settledSeconds, [this] {
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

void Desktop::monitorsChanged() {
    // Without a monitor windows stay as they are, hidden where the compositor closed them.
    if (backend_.refresh()) host_->setMonitors(backend_.monitors());
}

void Desktop::arranged(const std::vector<host::ArrangedWidget>& widgets) {
    arranged_ = widgets;
    std::set<std::string> gone;
    for (const auto& [id, window] : windows_) gone.insert(id);
    for (const host::ArrangedWidget& each : widgets) {
        windowOf(each.widget).arrange(each);
        gone.erase(each.widget.id);
    }
    for (const std::string& id : gone) close(id);
}

WidgetWindow& Desktop::windowOf(const host::PlacedWidget& widget) {
    if (const auto found = windows_.find(widget.id);
        found != windows_.end() && found->second->kind() != widget.kind)
        close(widget.id);
    auto& window = windows_[widget.id];
    if (window) return *window;
    const auto open = [this, id = widget.id](const std::string& url) { openLink(id, url); };
    window = std::make_unique<WidgetWindow>(
        WidgetWindow::Seams{
            .host = *host_,
            .backend = backend_,
            .view =
                {.renderer = renderer_,
                 .now = &Date::now,
                 .open = open,
                 // A window that is cut to the outline has no pixels behind it to be seen.
                 .corners =
                     backend_.isTranslucent() ? drawing::Corners::rounded : drawing::Corners::outlined},
            .isHidden =
                [this](GdkWindow* hidden) { return covers_->isHidden(hidden) || frames_->isHidden(hidden); },
            .isScreenSeen = [this] { return isScreenSeen_; },
            .entered =
                [this, id = widget.id] {
                    session_->somebodyIsThere();
                    host_->freshen(id);
                },
            .walk = [this, id = widget.id](Step step) { return walk(id, step); },
            .showGallery = [this] { showGallery(); },
            .closed = [this] { monitorsChanged(); }},
        widget);
    window->signal_unmap().connect([this, unmapped = window.get()] {
        if (const auto surface = unmapped->get_window()) frames_->forget(surface->gobj());
    });
    if (const auto* description = host_->offers().find(widget.kind)) window->describe(*description);
    if (const auto* entry = host_->shown(widget.id)) window->view().present(*entry);
    return *window;
}

bool Desktop::walk(const std::string& from, Step step) {
    const auto to = stepFrom(from, step, arranged_);
    const auto found = to ? windows_.find(*to) : windows_.end();
    if (found == windows_.end()) return false;
    found->second->takeKeys(step != Step::previous);
    return true;
}

void Desktop::focusNext() {
    const auto from =
        std::ranges::find_if(windows_, [](const auto& each) { return each.second->has_toplevel_focus(); });
    walk(from == windows_.end() ? "" : from->first, Step::next);
}

void Desktop::close(const std::string& id) {
    const auto found = windows_.find(id);
    // This may run because of the window itself: it goes away when nothing of it runs any more.
    const std::shared_ptr<WidgetWindow> window = std::move(found->second);
    windows_.erase(found);
    window->hide();
    host::postToMainThread([window] {});
}

void Desktop::shows(const host::PlacedWidget& widget, const widgetkit::ArchivedEntry& entry) {
    if (const auto found = windows_.find(widget.id); found != windows_.end())
        found->second->view().present(entry);
}

void Desktop::offers(const std::vector<widgetkit::WidgetDescription>& widgets) {
    for (const auto& [id, window] : windows_)
        if (const auto* description = host_->offers().find(window->kind())) window->describe(*description);
    if (gallery_) gallery_->offer(widgets);
    const auto& folders = host_->offers().confinement().folders;
    std::set<std::filesystem::path> files;
    for (const widgetkit::WidgetDescription& widget : widgets)
        if (widget.files) files.insert(widget.files->begin(), widget.files->end());
    paths_.follow({folders.begin(), folders.end()}, {files.begin(), files.end()});
    // Whoever starts this for the first time sees what there is.
    if (!isFirstStart_ || !host_->widgets().empty()) return;
    isFirstStart_ = false;
    for (const widgetkit::WidgetDescription& widget : widgets)
        if (!widget.families.empty()) add(widget.kind, widget.families.front(), std::nullopt);
}

void Desktop::add(const std::string& kind, widgetkit::WidgetFamily family, std::optional<host::Cell> cell) {
    if (const auto added = host_->add(kind, family, cell); !added) options_.log(added.fault().text());
}

void Desktop::openLink(const std::string& id, const std::string& url) {
    const auto opened = links_.open(url);
    if (opened) return;
    options_.log(opened.fault().text());
    if (const auto found = windows_.find(id); found != windows_.end())
        found->second->view().say(strings::noHandler);
}

void Desktop::showGallery() {
    if (!gallery_) {
        gallery_ = std::make_unique<Gallery>(
            Gallery::Seams{
                .previews = host_->previews(),
                .backend = backend_,
                .renderer = renderer_,
                .now = &Date::now,
                .add = [this](
                           const std::string& kind,
                           widgetkit::WidgetFamily family,
                           std::optional<host::Cell>
                               cell) { add(kind, family, cell); }},
            host_->offers().widgets());
        gallery_->signal_delete_event().connect([this](GdkEventAny*) {
            // Not from within its own signal.
            const std::shared_ptr<Gallery> closed = std::move(gallery_);
            host::postToMainThread([closed] {});
            return false;
        });
    }
    gallery_->present();
}

}  // namespace zelto::desktop
