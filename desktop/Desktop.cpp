#include "desktop/Desktop.hpp"

#include "desktop/Words.hpp"
#include "host/Arrangement.hpp"

namespace zelto::desktop {
namespace {

/// An upgrade of the zones' data counts as done when nothing has changed for so long.
constexpr double upgradeSeconds = 2;

}  // namespace

Desktop::Desktop(DesktopOptions options)
    : options_(std::move(options)),
      surroundings_(options_.zoom),
      links_(options_.linkCommand, options_.log),
      worker_(std::make_unique<host::ExtensionWorker>(
          options_.extension, host::ExtensionWorker::Seams{
                                  .post =
                                      [isThere = std::weak_ptr(life_)](std::function<void()> function) {
                                          postToMainThread([isThere, function = std::move(function)] {
                                              if (!isThere.expired()) function();
                                          });
                                      },
                                  .log = options_.log})) {
    host::PlacementStore placements(options_.folders.configuration, options_.log);
    std::error_code error;
    isFirstStart_ = !std::filesystem::exists(placements.file(), error);
    host_ = std::make_unique<host::WidgetHost>(
        seams(), std::move(placements), host::EntryStore(options_.folders.cache / "widgets"), *this);

    timerSource_ = MainSource::whenReadable(timer_.fd(), [this] {
        switch (timer_.take()) {
            case host::WallTimer::Event::clockSet: host_->environmentChanged(); break;
            case host::WallTimer::Event::expired: host_->wake(); break;
            case host::WallTimer::Event::none: break;
        }
    });
    zoneSource_ = MainSource::whenReadable(zone_.fd(), [this] {
        const auto changes = zone_.take();
        // What the extension has read of the zones stays with it: it is to start anew, also when the setting
        // is a file of its own; after an upgrade, once all is in place.
        if (changes.setting) {
            worker_->restart();
            host_->environmentChanged();
        }
        if (changes.data)
            zoneDataSource_ = MainSource::after(upgradeSeconds, [this] {
                worker_->restart();
                host_->environmentChanged();
            });
    });
    if (const auto font = drawing::Renderer::substituteFont())
        options_.log("the font Inter is not installed; texts are drawn in " + *font);
    watchMonitors();
    host_->start();
    for (const auto& [kind, family] : options_.wishes) add(kind, family, std::nullopt);
    if (options_.showsGallery) showGallery();
}

Desktop::~Desktop() {
    worker_.reset();
}

host::HostSeams Desktop::seams() {
    return {
        .now = &Date::now,
        .environment = &Environment::current,
        .ask =
            [this](std::vector<Request> requests, host::ExtensionWorker::Completion completion) {
                worker_->ask(std::move(requests), std::move(completion));
            },
        .wakeAt = [this](std::optional<Date> instant) { timer_.arm(instant); },
        .log = options_.log};
}

void Desktop::watchMonitors() {
    const auto arrangeAll = [](gpointer self) { static_cast<Desktop*>(self)->arrange(); };
    GdkDisplay* display = gdk_display_get_default();
    GdkScreen* screen = gdk_screen_get_default();
    g_signal_connect_swapped(display, "monitor-added", G_CALLBACK(+arrangeAll), this);
    g_signal_connect_swapped(display, "monitor-removed", G_CALLBACK(+arrangeAll), this);
    g_signal_connect_swapped(screen, "monitors-changed", G_CALLBACK(+arrangeAll), this);
    g_signal_connect_swapped(screen, "size-changed", G_CALLBACK(+arrangeAll), this);
}

std::int64_t Desktop::columns() const {
    const auto desks = surroundings_.desks();
    return desks.empty() ? 1 : surroundings_.columns(desks.front());
}

void Desktop::arrange() {
    const auto desks = surroundings_.desks();
    if (!desks.empty()) host_->nameFirstMonitor(desks.front().name);
    std::vector<host::DeskTiles> tiles;
    for (const Desk& desk : desks)
        tiles.push_back({desk.name, surroundings_.columns(desk), surroundings_.rows(desk)});
    const auto standings = host::arrange(host_->widgets(), tiles);
    for (const host::PlacedWidget& widget : host_->widgets()) {
        const auto window = windows_.find(widget.id);
        const auto standing = standings.find(widget.id);
        if (window != windows_.end() && standing != standings.end())
            window->second->stand(widget, desks[standing->second.desk], standing->second.cell);
    }
}

void Desktop::placed(const host::PlacedWidget& widget) {
    if (const auto found = windows_.find(widget.id);
        found != windows_.end() && found->second->kind() != widget.kind)
        removed(widget.id);
    if (auto& window = windows_[widget.id]; !window) {
        const auto open = [this, id = widget.id](const std::string& url) { openLink(id, url); };
        window = std::make_unique<WidgetWindow>(
            WidgetWindow::Seams{
                .host = *host_,
                .surroundings = surroundings_,
                .face =
                    {.renderer = renderer_,
                     .now = &Date::now,
                     .open = open,
                     // A window that is cut to the outline has no pixels behind it to be seen.
                     .corners = surroundings_.isTranslucent() ? drawing::Corners::rounded
                                                              : drawing::Corners::outlined},
                .showGallery = [this] { showGallery(); },
                .arrange = [this] { arrange(); }},
            widget);
        if (const auto* description = host_->describe(widget.kind)) window->describe(*description);
    }
    arrange();
}

void Desktop::removed(const std::string& id) {
    const auto found = windows_.find(id);
    if (found == windows_.end()) return;
    // The wish may come from the window itself: it goes away when nothing of it runs any more.
    const std::shared_ptr<WidgetWindow> window = std::move(found->second);
    windows_.erase(found);
    window->hide();
    postToMainThread([window] {});
}

void Desktop::shows(const host::PlacedWidget& widget, const ArchivedEntry& entry) {
    if (const auto found = windows_.find(widget.id); found != windows_.end())
        found->second->face().present(entry);
}

void Desktop::offers(const std::vector<WidgetDescription>& widgets) {
    for (const host::PlacedWidget& widget : host_->widgets())
        if (const auto* description = host_->describe(widget.kind))
            windows_.at(widget.id)->describe(*description);
    if (gallery_) gallery_->offer(widgets);
    // Whoever starts this for the first time sees what there is.
    if (!isFirstStart_ || !host_->widgets().empty()) return;
    isFirstStart_ = false;
    for (const WidgetDescription& widget : widgets)
        if (!widget.families.empty()) add(widget.kind, widget.families.front(), std::nullopt);
}

void Desktop::add(const std::string& kind, WidgetFamily family, std::optional<host::Cell> cell) {
    std::string id;
    const auto why = host_->add(kind, family, cell, columns(), id);
    if (!why.empty()) options_.log(why);
}

void Desktop::openLink(const std::string& id, const std::string& url) {
    if (links_.open(url)) return;
    if (const auto found = windows_.find(id); found != windows_.end())
        found->second->face().say(words::noHandler);
}

void Desktop::showGallery() {
    if (!gallery_) {
        gallery_ = std::make_unique<Gallery>(Gallery::Seams{
            .host = *host_,
            .surroundings = surroundings_,
            .renderer = renderer_,
            .now = &Date::now,
            .add = [this](const std::string& kind, WidgetFamily family, std::optional<host::Cell> cell) {
                add(kind, family, cell);
            }});
        gallery_->signal_delete_event().connect([this](GdkEventAny*) {
            // Not from within its own signal.
            const std::shared_ptr<Gallery> closed = std::move(gallery_);
            postToMainThread([closed] {});
            return false;
        });
    }
    gallery_->present();
}

}  // namespace zelto::desktop
