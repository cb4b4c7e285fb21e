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
        isFirstStart_ = !layouts_.wasThere();
        adopt(*std::move(loaded));
        timelines_.forgetOthers();
    } else {
        seams_.log(loaded.fault().text());
        if (!layouts_.isUnread()) startFromCopy();
    }
    tick();
}

/// What made no sense is kept aside: it is not missed at the next start either.
void WidgetHost::startFromCopy() {
    auto copy = layouts_.lastGood();
    isFirstStart_ = !copy;
    if (copy) {
        adopt(*std::move(copy));
        save();
    }
    observer_.troubled({.kind = LayoutTrouble::Kind::broken});
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
    tellTroubles(now);
    if (mayAsk_)
        seams_.wakeAt(first(first(timelines_.nextInstant(), offers_.nextInstant()), news_.nextInstant()));
}

void WidgetHost::tellTroubles(Date now) {
    std::erase_if(troubles_, [this](const auto& each) { return !layout_.find(each.first); });
    for (const PlacedWidget& widget : layout_.widgets) {
        std::optional<PictureTrouble> trouble;
        if (timelines_.isFailing(widget.id)) {
            const auto since = timelines_.oldSince(widget.id, now);
            if (since)
                trouble = {.kind = PictureTrouble::Kind::old, .since = since};
            else if (!timelines_.shown(widget.id))
                trouble = {
                    .kind = offers_.check(widget.kind, widget.family) ? PictureTrouble::Kind::noAnswer
                                                                      : PictureTrouble::Kind::notOffered};
        }
        const auto before = troubles_.find(widget.id);
        // An age grows while the trouble stays.
        if (trouble && (trouble->since || before == troubles_.end() || before->second != *trouble)) {
            troubles_.insert_or_assign(widget.id, *trouble);
            observer_.troubled(widget, trouble);
        } else if (!trouble && before != troubles_.end()) {
            troubles_.erase(before);
            observer_.troubled(widget, std::nullopt);
        }
    }
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
    if (monitors_.empty()) return;
    const auto arranged = layout_.arranged(monitors_);
    const std::size_t homeless = layout_.widgets.size() - arranged.size();
    observer_.arranged(arranged);
    if (std::exchange(homeless_, homeless) < homeless) {
        seams_.log(std::to_string(homeless) + " widgets have no room on the monitors, and are not shown");
        observer_.troubled({.kind = LayoutTrouble::Kind::noRoom});
    }
}

void WidgetHost::adopt(DesktopLayout layout) {
    const DesktopSettings before = settings();
    layout_ = std::move(layout);
    if (settings() != before) observer_.settingsChanged(settings());
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
        this->written(written);
        if (saved) saved(written);
        // What a person wrote meanwhile.
        if (written) takeOverEdits();
    });
}

void WidgetHost::written(const Result<void>& written) {
    const std::string reason = written ? "" : written.fault().reason;
    if (std::exchange(refusal_, reason) == reason || written) return;
    seams_.log(written.fault().text());
    observer_.troubled({.kind = LayoutTrouble::Kind::notSaved, .reason = reason});
}

void WidgetHost::takeOverEdits() {
    // What is still being written is not there yet.
    if (saves_ > 0 || !(layouts_.wasEdited() || layouts_.isUnread())) return;
    if (auto edited = layouts_.load()) {
        adopt(*std::move(edited));
    } else {
        if (!layouts_.isUnread()) {
            seams_.log(edited.fault().text());
            observer_.troubled({.kind = LayoutTrouble::Kind::broken});
            save();
        }
    }
    tick();
}

Result<std::string> WidgetHost::add(
    const std::string& name, widgetkit::WidgetFamily family, const Wish& wish, Saved saved) {
    takeOverEdits();
    const std::string kind = offers_.kindCalled(name);
    if (const auto offered = offers_.check(kind, family); !offered) return offered.fault();
    const std::string id = newID();
    if (auto changed = change(layout_.added(id, kind, family, wish, monitors_), std::move(saved)); !changed)
        return std::move(changed).fault();
    return id;
}

Result<void> WidgetHost::remove(const std::string& id, Saved saved) {
    takeOverEdits();
    const PlacedWidget* widget = layout_.find(id);
    if (!widget) return layout_.removed(id).fault();
    const Removal removal{*widget, static_cast<std::size_t>(widget - layout_.widgets.data()), seams_.now()};
    auto done = change(layout_.removed(id), std::move(saved));
    if (!done) return done;
    forgetRemovals();
    removals_.push_back(removal);
    observer_.removed(removal.widget);
    return done;
}

void WidgetHost::forgetRemovals() {
    const Date now = seams_.now();
    std::erase_if(
        removals_, [now](const Removal& each) { return now - each.at > undoSeconds || now < each.at; });
}

Result<std::string> WidgetHost::undoRemoval(const std::optional<std::string>& id) {
    takeOverEdits();
    forgetRemovals();
    const auto found = std::ranges::find_if(removals_.rbegin(), removals_.rend(), [&](const Removal& each) {
        return !id || each.widget.id == *id;
    });
    if (found == removals_.rend()) return Fault{.reason = "nothing was removed in the last ten seconds"};
    const Removal removal = *found;
    if (const auto done = change(layout_.restored(removal.widget, removal.index, monitors_)); !done)
        return done.fault();
    std::erase_if(removals_, [&](const Removal& each) { return each.widget.id == removal.widget.id; });
    return removal.widget.id;
}

void WidgetHost::set(const DesktopSettings& settings) {
    takeOverEdits();
    DesktopLayout changed = layout_;
    changed.settings = settings;
    if (const auto done = change(changed); !done) {
        seams_.log(done.fault().text());
        // Whoever shows them shows those that hold.
        observer_.settingsChanged(this->settings());
    }
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

std::optional<std::size_t> WidgetHost::inTheWay(const std::string& id, Slot slot) const {
    const auto moved = layout_.moved(id, slot, monitors_);
    if (!moved) return std::nullopt;
    std::size_t others = 0;
    for (const PlacedWidget& widget : layout_.widgets)
        if (widget.id != id && *moved->find(widget.id) != widget) ++others;
    return others;
}

bool WidgetHost::isFree(Slot slot, widgetkit::WidgetFamily family) const {
    return layout_.isFree(slot, family, monitors_);
}

Result<void> WidgetHost::send(const std::string& id, std::size_t monitor, Cell cell, Saved saved) {
    takeOverEdits();
    return change(layout_.sent(id, monitor, cell, monitors_), std::move(saved));
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

Result<void> WidgetHost::reloadKind(const std::string& name) {
    const std::string kind = offers_.kindCalled(name);
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
