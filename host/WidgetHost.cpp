#include "host/WidgetHost.hpp"

#include <algorithm>
#include <utility>

#include "foundation/UUID.hpp"

namespace zelto::host {
namespace {

/// A name for a widget, in lower case as people expect it in files.
std::string newID() {
    std::string id = UUID::random().text();
    for (char& c : id)
        if (c >= 'A' && c <= 'F') c = static_cast<char>(c - 'A' + 'a');
    return id;
}

/// The earlier of two instants that may be absent.
std::optional<Date> first(std::optional<Date> a, std::optional<Date> b) {
    return a && b ? std::min(*a, *b) : a ? a : b;
}

}  // namespace

WidgetHost::WidgetHost(
    HostSeams seams, DesktopLayoutStore layouts, EntryStore entries, HostObserver& observer)
    : seams_(std::move(seams)),
      observer_(observer),
      client_{seams_.environment(), seams_.ask},
      layouts_(std::move(layouts)),
      timelines_(
          std::move(entries),
          {.client = client_, .now = seams_.now, .log = seams_.log, .changed = [this] { tick(); }},
          seams_.onDisk),
      offers_(
          {.client = client_, .now = seams_.now, .log = seams_.log, .changed = [this] { offersChanged(); }}),
      previews_(client_, seams_.log) {}

void WidgetHost::start() {
    if (const auto dropped = timelines_.dropUnfinished())
        seams_.log(
            "the last run died while it drew " + *dropped +
            ", which is not shown any more until there is a new one");
    if (auto loaded = layouts_.load()) {
        adopt(*std::move(loaded));
        timelines_.forgetOthers();
    } else {
        seams_.log(loaded.fault().text());
    }
    tick();
}

void WidgetHost::environmentChanged() {
    client_.environment = seams_.environment();
    reloadAll();
}

void WidgetHost::setMonitors(Monitors monitors) {
    monitors_ = std::move(monitors);
    tellArrangement();
}

void WidgetHost::wake() {
    if (layouts_.isUnread()) takeOverEdits();
    tick();
}

void WidgetHost::tick() {
    const Date now = seams_.now();
    if (mayAsk_) offers_.tick(now);
    timelines_.reloadKinds(news_.due(now));
    timelines_.refreshEvery(timelines_.isAnyLiveSeen() ? seams_.refresh() : std::nullopt);
    for (std::string& id : timelines_.tick(now, mayAsk_))
        if (std::ranges::find(undrawn_, id) == undrawn_.end()) undrawn_.push_back(std::move(id));
    timelines_.storeDrawn(undrawn_);
    // What is stored is shown first: nobody waits for it behind an extension that starts.
    const bool isFirst = !mayAsk_ && undrawn_.empty();
    if ((!undrawn_.empty() || isFirst) && !std::exchange(isDrawing_, true))
        seams_.soon([this] { drawNext(); });
    if (mayAsk_)
        seams_.wakeAt(first(first(timelines_.nextInstant(), offers_.nextInstant()), news_.nextInstant()));
}

void WidgetHost::drawNext() {
    isDrawing_ = false;
    if (undrawn_.empty()) {
        if (!std::exchange(mayAsk_, true)) tick();
        return;
    }
    const std::string id = std::move(undrawn_.front());
    undrawn_.pop_front();
    const PlacedWidget* widget = layout_.find(id);
    const widgetkit::ArchivedEntry* entry = timelines_.shown(id);
    if (widget && entry) timelines_.whileDrawing(*widget, [&] { observer_.shows(*widget, *entry); });
    timelines_.storeDrawn(undrawn_);
    if ((!undrawn_.empty() || !mayAsk_) && !std::exchange(isDrawing_, true))
        seams_.soon([this] { drawNext(); });
}

void WidgetHost::offersChanged() {
    if (!offers_.widgets().empty()) observer_.offers(offers_.widgets());
    tellLive();
    tick();
}

void WidgetHost::tellLive() {
    timelines_.setLive([this](const std::string& kind) {
        const auto* widget = offers_.find(kind);
        return widget && widget->live.value_or(false);
    });
}

void WidgetHost::setSeen(const std::string& id, bool isSeen) {
    timelines_.setSeen(id, isSeen);
    if (isSeen) timelines_.freshen(id);
    tellSeen();
    tick();
}

void WidgetHost::tellSeen() {
    if (std::exchange(wasSeen_, isSeen()) != isSeen()) observer_.seenChanged(isSeen());
}

void WidgetHost::freshen(const std::optional<std::string>& id) {
    if (id)
        timelines_.freshen(*id);
    else
        for (const PlacedWidget& widget : layout_.widgets) timelines_.freshen(widget.id);
    tick();
}

void WidgetHost::filesChanged(const std::set<std::string>& files) {
    std::set<std::string> kinds;
    for (const auto& widget : offers_.widgets())
        if (widget.files &&
            std::ranges::any_of(*widget.files, [&](const auto& file) { return files.contains(file); }))
            kinds.insert(widget.kind);
    news_.changed(kinds);
    tick();
}

void WidgetHost::tellArrangement() {
    // Without monitors nothing can be said of where widgets are.
    if (!monitors_.empty()) observer_.arranged(layout_.arranged(monitors_));
}

void WidgetHost::adopt(DesktopLayout layout) {
    layout_ = std::move(layout);
    timelines_.follow(layout_.widgets);
    tellLive();
    tellSeen();
    tellArrangement();
}

Result<void> WidgetHost::change(Result<DesktopLayout> changed, Saved saved) {
    if (!changed) return std::move(changed).fault();
    if (layouts_.isUnread())
        return Fault{
            .path = layouts_.file().string(), .reason = "it could not be read, and is not written over"};
    adopt(*std::move(changed));
    save(std::move(saved));
    tick();
    return {};
}

void WidgetHost::save(Saved saved) {
    ++saves_;
    seams_.onDisk(layouts_.saving(layout_), [this, saved = std::move(saved)](const Result<void>& written) {
        --saves_;
        if (!written) seams_.log(written.fault().text());
        if (saved) saved(written);
    });
}

void WidgetHost::takeOverEdits() {
    // What is still being written is not there yet.
    if (saves_ > 0 || !(layouts_.wasEdited() || layouts_.isUnread())) return;
    if (auto edited = layouts_.load()) {
        adopt(*std::move(edited));
    } else {
        if (!layouts_.isUnread()) {
            seams_.log(edited.fault().text());
            save();
        }
    }
    tick();
}

Result<std::string> WidgetHost::add(
    const std::string& kind, widgetkit::WidgetFamily family, std::optional<Cell> cell, Saved saved) {
    takeOverEdits();
    if (const auto offered = offers_.check(kind, family); !offered) return offered.fault();
    const std::string id = newID();
    if (auto changed = change(layout_.added(id, kind, family, cell, monitors_), std::move(saved)); !changed)
        return std::move(changed).fault();
    return id;
}

Result<void> WidgetHost::remove(const std::string& id, Saved saved) {
    takeOverEdits();
    return change(layout_.removed(id), std::move(saved));
}

Result<void> WidgetHost::move(
    const std::string& id, const std::optional<std::string>& monitor, Cell cell, Saved saved) {
    takeOverEdits();
    return change(layout_.moved(id, monitor, cell, monitors_), std::move(saved));
}

Result<void> WidgetHost::move(const std::string& id, Slot slot, Saved saved) {
    takeOverEdits();
    return change(layout_.moved(id, slot, monitors_), std::move(saved));
}

Result<void> WidgetHost::setFamily(const std::string& id, widgetkit::WidgetFamily family, Saved saved) {
    takeOverEdits();
    const PlacedWidget* widget = layout_.find(id);
    if (widget && widget->family == family) {
        if (saved) saved({});
        return {};
    }
    // A widget that the extension does not offer any more keeps what it can still be.
    if (widget && offers_.find(widget->kind))
        if (auto offered = offers_.check(widget->kind, family); !offered) return offered;
    return change(layout_.resized(id, family, monitors_), std::move(saved));
}

Result<void> WidgetHost::reload(const std::string& id) {
    if (!layout_.find(id)) return Fault{.reason = "no placed widget '" + id + "'"};
    timelines_.reload(id);
    tick();
    return {};
}

Result<void> WidgetHost::reloadKind(const std::string& kind) {
    bool isPlaced = false;
    for (const PlacedWidget& widget : layout_.widgets) {
        if (widget.kind != kind) continue;
        timelines_.reload(widget.id);
        isPlaced = true;
    }
    if (!isPlaced && !offers_.widgets().empty() && !offers_.find(kind))
        return Fault{.reason = "no widget '" + kind + "'"};
    tick();
    return {};
}

void WidgetHost::reloadAll() {
    timelines_.reloadAll();
    offers_.reload();
    tick();
}

}  // namespace zelto::host
