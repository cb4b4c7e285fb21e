#include "Desktop.hpp"

#include <algorithm>
#include <charconv>
#include <set>
#include <utility>

#include "ActivationToken.hpp"
#include "Strings.hpp"
#include "system/PowerSources.hpp"

namespace zelto::desktop {
Desktop::Desktop(DesktopOptions options)
    : options_(std::move(options)),
      links_(options_.linkCommand),
      supervisor_(std::make_unique<host::ExtensionSupervisor>(options_.extension, options_.log)) {
    additions_ = options_.additions;
    host_ = std::make_unique<host::WidgetHost>(
        seams(),
        host::DesktopLayoutStore(options_.folders.configuration),
        host::EntryStore(options_.folders.cache / "widgets"),
        *this);

    watchClock();
    watchPaths();
    watchSight();
    if (const auto font = drawing::Renderer::substituteFont())
        options_.log("the font Inter is not installed; texts are drawn in " + *font);
    if (const auto shortcoming = backend_.shortcoming()) options_.log(*shortcoming);
    watchMonitors();
    watchAppearance();
    appearanceChanged();
    host_->start();
    if (options_.showsGallery) showGallery();
    if (options_.takesKeys) focusNext();
}

Desktop::~Desktop() {
    supervisor_.reset();
}

host::HostSeams Desktop::seams() {
    return {
        .now = &Date::now,
        .environment =
            [this] {
                auto environment = texts::Environment::current();
                if (options_.locale) environment.locale = *options_.locale;
                return environment;
            },
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
                    runloop::postToMainThread([then, done = work()] { then(done); });
                });
            },
        .refresh = [this]() -> std::optional<double> {
            const double seconds =
                options_.refresh.value_or(host_->settings().refresh.value_or(host::defaultRefresh));
            if (seconds <= 0 || system::isOnBattery(options_.machine / "sys/class/power_supply"))
                return std::nullopt;
            return seconds;
        },
        .soon =
            [this](std::function<void()> function) {
                soon_ = runloop::MainSource::after(0, std::move(function));
            }};
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
    if (gallery_) gallery_->arranged(arranged_);
    if (!unsaid_.empty() && !arranged_.empty()) say(std::exchange(unsaid_, {}));
}

void Desktop::say(const std::string& text) {
    constexpr double long_ = 20;  // seconds
    if (gallery_) gallery_->say(text);
    const auto first = stepFrom("", Step::next, arranged_);
    const auto found = first ? windows_.find(*first) : windows_.end();
    if (found == windows_.end())
        unsaid_ = text;
    else
        found->second->view().say(text, long_);
}

void Desktop::troubled(const host::LayoutTrouble& trouble) {
    switch (trouble.kind) {
        case host::LayoutTrouble::Kind::broken: say(strings::layoutBroken); break;
        case host::LayoutTrouble::Kind::notSaved: say(strings::notSaved(trouble.reason)); break;
        case host::LayoutTrouble::Kind::noRoom: say(strings::notAllHaveRoom); break;
    }
}

void Desktop::troubled(const host::PlacedWidget& widget, const std::optional<host::PictureTrouble>& trouble) {
    if (const auto found = windows_.find(widget.id); found != windows_.end())
        show(trouble, found->second->view());
}

void Desktop::show(const std::optional<host::PictureTrouble>& trouble, WidgetView& view) {
    view.setAge(trouble && trouble->since ? strings::age(Date::now() - *trouble->since) : "");
    if (!trouble || trouble->since) return;
    view.explain(
        trouble->kind == host::PictureTrouble::Kind::notOffered ? strings::notOffered : strings::noAnswer);
}

std::string Desktop::nameOf(const std::string& kind) const {
    const auto* description = host_->offers().find(kind);
    return description ? description->displayName : kind;
}

void Desktop::removed(const host::PlacedWidget& widget) {
    const std::string name = nameOf(widget.kind);
    if (gallery_) gallery_->say(strings::removed(name));
    // One that had no room had no window.
    if (!closed_ || closed_->id != widget.id) return;
    const Closed closed = *std::exchange(closed_, std::nullopt);
    const auto over = [this, id = widget.id] {
        auto line = undoLines_.extract(id);
        // Not from within its own signal.
        if (!line.empty())
            runloop::postToMainThread([gone = std::shared_ptr<UndoLine>(std::move(line.mapped()))] {});
    };
    auto& line = undoLines_[widget.id];
    line = std::make_unique<UndoLine>(
        backend_,
        UndoLine::Seams{
            .undo = [this, id = widget.id] { undo(id); },
            .over = over,
            .walk =
                [this, over] {
                    over();
                    focusNext();
                }},
        name,
        closed.slot,
        widget.family,
        host::WidgetHost::undoSeconds);
    if (closed.hadKeys) line->takeKeys();
}

void Desktop::undo(const std::optional<std::string>& id) {
    const auto back = host_->undoRemoval(id);
    if (!back) {
        options_.log(back.fault().text());
        return;
    }
    const auto line = undoLines_.find(*back);
    const bool hadKeys = line != undoLines_.end() && line->second->has_toplevel_focus();
    if (line != undoLines_.end()) {
        const std::shared_ptr<UndoLine> gone = std::move(line->second);
        undoLines_.erase(line);
        gone->hide();
        runloop::postToMainThread([gone] {});
    }
    const auto window = windows_.find(*back);
    if (hadKeys && window != windows_.end()) window->second->takeKeysAt(true);
}

void Desktop::settingsChanged(const host::DesktopSettings& settings) {
    if (gallery_) gallery_->settingsChanged(settings);
    // Not while windows are being arranged, nor from within one of theirs.
    appearance_ = runloop::MainSource::after(0, [this] { appearanceChanged(); });
}

Result<void> Desktop::setOption(const std::string& name, const std::string& value) {
    const auto number = [&](double least, double most) -> Result<double> {
        double out = 0;
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), out);
        if (error != std::errc() || end != value.data() + value.size() || !(out >= least && out <= most))
            return Fault{.path = name, .reason = "'" + value + "' is no number that it can be"};
        return out;
    };
    if (name == "link-command") {
        links_ = host::LinkOpener(value);
        return {};
    }
    if (name != "scale" && name != "refresh") return Fault{.reason = "no option '" + name + "'"};
    const auto wanted =
        name == "scale" ? number(host::smallestScale, host::largestScale) : number(0, host::longestRefresh);
    if (!wanted) return wanted.fault();
    if (name == "scale") {
        options_.zoom = *wanted;
        appearanceChanged();
    } else {
        options_.refresh = *wanted;
        host_->wake();
    }
    return {};
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
                 .corners = backend_.isTranslucent() ? drawing::Corners::rounded : drawing::Corners::outlined,
                 .contrast = isHighContrast_ ? layout::Contrast::high : layout::Contrast::normal},
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
            .linkHelp = [this]() -> std::function<void()> {
                if (!hasNoHandler_) return {};
                return [this] {
                    showGallery();
                    gallery_->showSettings();
                };
            },
            .undo = [this] { undo(std::nullopt); },
            .closed = [this] { monitorsChanged(); }},
        widget);
    window->signal_unmap().connect([this, unmapped = window.get()] {
        if (const auto surface = unmapped->get_window()) frames_->forget(surface->gobj());
    });
    if (const auto* description = host_->offers().find(widget.kind)) window->describe(*description);
    if (const auto* entry = host_->shown(widget.id)) window->view().present(*entry);
    show(host_->trouble(widget.id), window->view());
    return *window;
}

bool Desktop::walk(const std::string& from, Step step) {
    const auto to = stepFrom(from, step, arranged_);
    const auto found = to ? windows_.find(*to) : windows_.end();
    if (found == windows_.end()) return false;
    found->second->takeKeysAt(step != Step::previous);
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
    closed_ = {id, window->slot(), window->has_toplevel_focus()};
    window->hide();
    runloop::postToMainThread([window] {});
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
    files.insert(host_->layoutFile());
    paths_.follow({folders.begin(), folders.end()}, {files.begin(), files.end()});
    placeFirst(widgets);
}

/// What was wished for on the command line; without that, whoever starts this for the first time sees what
/// there is.
void Desktop::placeFirst(const std::vector<widgetkit::WidgetDescription>& widgets) {
    auto wanted = std::exchange(additions_, {});
    if (wanted.empty() && std::exchange(mayPlaceAll_, false) && host_->isFirstStart() &&
        host_->widgets().empty())
        for (const widgetkit::WidgetDescription& widget : widgets)
            if (!widget.families.empty()) wanted.emplace_back(widget.kind, widget.families.front());
    mayPlaceAll_ = false;
    for (const auto& [kind, family] : wanted)
        if (const auto offered = host_->offers().check(host_->offers().kindCalled(kind), family); !offered) {
            options_.log(offered.fault().text());
            options_.refused();
            return;
        }
    bool haveAllRoom = true;
    for (const auto& [kind, family] : wanted)
        if (const auto added = host_->add(kind, family); !added) {
            options_.log(kind + ": " + added.fault().text());
            haveAllRoom = false;
        }
    if (!haveAllRoom) say(strings::notAllHaveRoom);
}

void Desktop::add(const std::string& kind, widgetkit::WidgetFamily family, std::optional<host::Slot> slot) {
    host::Wish wish;
    if (slot) {
        wish.cell = slot->cell;
        if (slot->monitor > 0) wish.monitor = backend_.areas()[slot->monitor].name;
    }
    const auto added = host_->add(kind, family, wish);
    if (!added) options_.log(added.fault().text());
    const auto window = added ? windows_.find(*added) : windows_.end();
    if (window == windows_.end()) {
        if (gallery_) gallery_->say(nameOf(kind) + ": " + strings::noRoom);
        return;
    }
    window->second->view().flash();
    const host::Slot& there = window->second->slot();
    const std::string monitor = strings::monitorName(backend_.areas()[there.monitor].name, there.monitor);
    if (gallery_)
        gallery_->say(
            strings::added(nameOf(kind), strings::place(monitor, there.cell.column, there.cell.row)));
}

void Desktop::openLink(const std::string& id, const std::string& url) {
    const std::string token = activationToken();
    const auto opened = links_.open(url, token);
    if (opened || opened.fault().kind != host::LinkFault::Kind::noProgram) {
        linkOpened(id, opened);
        return;
    }
    // Whoever is asked for may take a while to start.
    app_.run([this, id, url, token, bus = options_.bus] {
        const auto handed = host::LinkOpener::handToApp(bus, url, token);
        runloop::postToMainThread([this, id, handed] { linkOpened(id, handed); });
    });
}

void Desktop::linkOpened(const std::string& id, const Result<void, host::LinkFault>& opened) {
    using enum host::LinkFault::Kind;
    const bool isFirst = !hasNoHandler_;
    hasNoHandler_ = !opened && opened.fault().kind == noProgram;
    if (opened) return;
    options_.log(opened.fault().text);
    const auto found = windows_.find(id);
    if (found == windows_.end()) return;
    const char* text = !hasNoHandler_ ? strings::handlerFailed
                       : isFirst      ? strings::noHandlerFirst
                                      : strings::noHandler;
    found->second->view().say(text);
}

void Desktop::showGallery() {
    if (!gallery_) {
        const auto addOne =
            [this](const std::string& kind, widgetkit::WidgetFamily family, std::optional<host::Slot> slot) {
                add(kind, family, slot);
            };
        gallery_ = std::make_unique<GalleryWindow>(GalleryWindow::Seams{
            .gallery =
                {.host = *host_,
                 .backend = backend_,
                 .renderer = renderer_,
                 .now = &Date::now,
                 .add = addOne},
            .undo = [this] { undo(std::nullopt); }});
        gallery_->arranged(arranged_);
        if (!unsaid_.empty()) gallery_->say(unsaid_);
        gallery_->signal_map_event().connect([this](GdkEventAny*) {
            giveKeysToGallery();
            return false;
        });
        gallery_->signal_delete_event().connect([this](GdkEventAny*) {
            // Not from within its own signal.
            const std::shared_ptr<GalleryWindow> closed = std::move(gallery_);
            runloop::postToMainThread([closed] {});
            return false;
        });
    }
    for (const auto& [id, window] : windows_) window->letKeysGo();
    gallery_->present();
    giveKeysToGallery();
}

/// A window manager that did not see how a widget came to the keys is too late to give them to others.
void Desktop::giveKeysToGallery() {
    if (backend_.windowKind() == WindowKind::unmanaged && gallery_ && gallery_->get_mapped())
        backend_.giveKeys(*gallery_);
}

}  // namespace zelto::desktop
