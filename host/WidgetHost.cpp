#include "host/WidgetHost.hpp"

#include <algorithm>
#include <utility>

#include "platform/foundation/JSONEncoder.hpp"
#include "platform/foundation/UUID.hpp"

namespace zelto::host {
WidgetHost::WidgetHost(HostSeams seams, PlacementStore placements, EntryStore entries, HostObserver& observer)
    : seams_(std::move(seams)),
      placements_(std::move(placements)),
      entries_(std::move(entries)),
      observer_(observer),
      environment_(seams_.environment()) {}

void WidgetHost::start() {
    if (auto placed = placements_.load()) {
        take(*std::move(placed));
        entries_.keepOnly(widgets_);
    }
    tick();
}

void WidgetHost::take(std::vector<PlacedWidget> widgets) {
    const std::vector<PlacedWidget> before = std::exchange(widgets_, std::move(widgets));
    for (const PlacedWidget& old : before) {
        if (find(old.id)) continue;
        schedule_.remove(old.id);
        faults_.erase(old.id);
        observer_.removed(old.id);
    }
    for (const PlacedWidget& widget : widgets_) {
        const auto old = std::ranges::find(before, widget.id, &PlacedWidget::id);
        if (old != before.end() && *old == widget) continue;
        const bool showsSame =
            old != before.end() && old->kind == widget.kind && old->family == widget.family;
        if (!showsSame) schedule_.add(widget.id, entries_.load(widget));
        observer_.placed(widget);
    }
}

void WidgetHost::wake() {
    tick();
}

void WidgetHost::environmentChanged() {
    environment_ = seams_.environment();
    reloadAll();
}

void WidgetHost::tick() {
    const Date now = seams_.now();
    const auto [requests, shows] = schedule_.at(now);
    for (const std::string& id : shows) {
        const PlacedWidget* widget = find(id);
        const ArchivedEntry* entry = schedule_.shown(id);
        if (widget && entry) observer_.shows(*widget, *entry);
    }
    auto next = schedule_.nextInstant();
    if (offered_.empty() && !isAskingForOffers_) {
        if (askForOffersAt_ <= now)
            askForOffers();
        else
            next = std::min(next.value_or(askForOffersAt_), askForOffersAt_);
    }
    if (!requests.empty()) askForTimelines(requests);
    seams_.wakeAt(next);
}

Request WidgetHost::request(RequestKind kind) const {
    return {.request = kind, .locale = environment_.locale, .timeZone = environment_.timeZone};
}

void WidgetHost::askForOffers() {
    isAskingForOffers_ = true;
    seams_.ask({request(RequestKind::bundle)}, [this](Outcomes outcomes) {
        isAskingForOffers_ = false;
        Outcome& outcome = outcomes.at(0);
        if (outcome.reply && outcome.reply->widgets) {
            offered_ = *std::move(outcome.reply->widgets);
            observer_.offers(offered_);
            return;
        }
        seams_.log("could not list the widgets: " + outcome.error);
        offersBackoff_.failed();
        askForOffersAt_ = seams_.now() + offersBackoff_.pause();
        tick();
    });
}

void WidgetHost::askForTimelines(const std::vector<std::string>& ids) {
    std::vector<Request> requests;
    std::vector<PlacedWidget> asked;
    for (const std::string& id : ids) {
        const PlacedWidget* widget = find(id);
        if (!widget) continue;
        Request each = request(RequestKind::timeline);
        each.kind = widget->kind;
        each.family = widget->family;
        requests.push_back(std::move(each));
        asked.push_back(*widget);
    }
    seams_.ask(std::move(requests), [this, asked](Outcomes&& outcomes) {
        for (auto& [place, outcome] : outcomes) received(asked.at(place), std::move(outcome));
        tick();
    });
}

void WidgetHost::received(const PlacedWidget& asked, Outcome outcome) {
    const PlacedWidget* widget = find(asked.id);
    // Another family was chosen, or the widget was removed, since then.
    if (!widget || widget->kind != asked.kind || widget->family != asked.family) return;
    std::string fault = outcome.error;
    if (outcome.reply && !outcome.reply->timeline) fault = "an answer without a timeline";
    if (outcome.reply && outcome.reply->timeline && outcome.reply->timeline->entries.empty())
        fault = "a timeline without entries";
    if (!fault.empty()) {
        failed(*widget, fault);
        return;
    }
    faults_.erase(widget->id);
    if (!entries_.save(*widget, *outcome.reply->timeline))
        seams_.log("the timeline of " + asked.kind + " cannot be stored");
    schedule_.received(asked.id, *std::move(outcome.reply->timeline), seams_.now());
}

void WidgetHost::failed(const PlacedWidget& widget, const std::string& fault) {
    schedule_.failed(widget.id, seams_.now());
    // One cause is told once, however often it is tried again.
    if (std::exchange(faults_[widget.id], fault) != fault)
        seams_.log(widget.kind + ", " + std::string(nameOf(widget.family)) + ": " + fault);
}

const PlacedWidget* WidgetHost::find(const std::string& id) const {
    const auto found = std::ranges::find(widgets_, id, &PlacedWidget::id);
    return found == widgets_.end() ? nullptr : &*found;
}

PlacedWidget* WidgetHost::findMutable(const std::string& id) {
    return const_cast<PlacedWidget*>(find(id));
}

const WidgetDescription* WidgetHost::describe(const std::string& kind) const {
    const auto found = std::ranges::find(offered_, kind, &WidgetDescription::kind);
    return found == offered_.end() ? nullptr : &*found;
}

void WidgetHost::save() {
    placements_.save(widgets_);
    entries_.keepOnly(widgets_);
    tick();
}

Cell WidgetHost::roomFor(
    WidgetFamily family, const std::optional<std::string>& monitor, std::int64_t columns,
    const std::string& except) const {
    TileGrid grid(columns);
    for (const PlacedWidget& widget : widgets_)
        if (isSameMonitor(widget.monitor, monitor) && widget.id != except)
            grid.take(widget.cell(), widget.family);
    return grid.firstFree(family);
}

bool WidgetHost::isSameMonitor(
    const std::optional<std::string>& a, const std::optional<std::string>& b) const {
    return a.value_or(firstMonitor_) == b.value_or(firstMonitor_);
}

bool WidgetHost::isFree(const PlacedWidget& widget, std::int64_t columns) const {
    TileGrid grid(columns);
    for (const PlacedWidget& other : widgets_)
        if (other.id != widget.id && isSameMonitor(other.monitor, widget.monitor))
            grid.take(other.cell(), other.family);
    return grid.isFree(widget.cell(), widget.family);
}

WidgetHost::Refusal WidgetHost::add(
    const std::string& kind, WidgetFamily family, std::optional<Cell> cell, std::int64_t columns,
    std::string& id) {
    takeOverEdits();
    if (!offered_.empty()) {
        const WidgetDescription* description = describe(kind);
        if (!description) return "no widget '" + kind + "'";
        if (std::ranges::find(description->families, family) == description->families.end())
            return kind + " is not offered as " + std::string(nameOf(family));
    }
    PlacedWidget widget{.id = UUID::random().text(), .kind = kind, .family = family};
    for (char& c : widget.id)
        if (c >= 'A' && c <= 'F') c = static_cast<char>(c - 'A' + 'a');
    const Cell place = cell.value_or(roomFor(family, std::nullopt, columns));
    widget.column = place.column;
    widget.row = place.row;
    if (!encodeJSON(widget)) return "a kind that is not UTF-8";
    if (!isFree(widget, columns)) {
        const Cell room = roomFor(family, std::nullopt, columns);
        widget.column = room.column;
        widget.row = room.row;
    }
    id = widget.id;
    widgets_.push_back(widget);
    schedule_.add(id, std::nullopt);
    observer_.placed(widget);
    save();
    return {};
}

WidgetHost::Refusal WidgetHost::remove(const std::string& id) {
    takeOverEdits();
    if (!find(id)) return "no placed widget '" + id + "'";
    std::erase_if(widgets_, [&](const PlacedWidget& widget) { return widget.id == id; });
    schedule_.remove(id);
    faults_.erase(id);
    observer_.removed(id);
    save();
    return {};
}

WidgetHost::Refusal WidgetHost::move(
    const std::string& id, const std::optional<std::string>& monitor, Cell cell) {
    takeOverEdits();
    PlacedWidget* widget = findMutable(id);
    if (!widget) return "no placed widget '" + id + "'";
    PlacedWidget moved = *widget;
    moved.monitor = monitor;
    moved.column = std::clamp<std::int64_t>(cell.column, 0, farthestTile);
    moved.row = std::clamp<std::int64_t>(cell.row, 0, farthestTile);
    if (!isFree(moved, farthestTile + 1)) return "another widget stands there";
    *widget = moved;
    observer_.placed(*widget);
    save();
    return {};
}

WidgetHost::Refusal WidgetHost::setFamily(const std::string& id, WidgetFamily family, std::int64_t columns) {
    takeOverEdits();
    PlacedWidget* widget = findMutable(id);
    if (!widget) return "no placed widget '" + id + "'";
    if (widget->family == family) return {};
    const WidgetDescription* description = describe(widget->kind);
    if (description && std::ranges::find(description->families, family) == description->families.end())
        return widget->kind + " is not offered as " + std::string(nameOf(family));
    widget->family = family;
    if (!isFree(*widget, columns)) {
        const Cell room = roomFor(family, widget->monitor, columns, id);
        widget->column = room.column;
        widget->row = room.row;
    }
    schedule_.add(id, std::nullopt);
    observer_.placed(*widget);
    save();
    return {};
}

WidgetHost::Refusal WidgetHost::reload(const std::string& id) {
    if (!find(id)) return "no placed widget '" + id + "'";
    schedule_.reload(id);
    tick();
    return {};
}

WidgetHost::Refusal WidgetHost::reloadKind(const std::string& kind) {
    bool isPlaced = false;
    for (const PlacedWidget& widget : widgets_) {
        if (widget.kind != kind) continue;
        schedule_.reload(widget.id);
        isPlaced = true;
    }
    if (!isPlaced && !offered_.empty() && !describe(kind)) return "no widget '" + kind + "'";
    tick();
    return {};
}

void WidgetHost::reloadAll() {
    schedule_.reloadAll();
    askForOffersAt_ = Date{};
    tick();
}

void WidgetHost::takeOverEdits() {
    if (!placements_.wasEdited()) return;
    if (auto edited = placements_.load())
        take(*std::move(edited));
    else
        placements_.save(widgets_);
    tick();
}

void WidgetHost::preview(
    const std::string& kind, WidgetFamily family,
    std::function<void(const std::optional<ArchivedEntry>&)> completion) {
    Request wanted = request(RequestKind::snapshot);
    wanted.kind = kind;
    wanted.family = family;
    wanted.preview = true;
    seams_.ask({std::move(wanted)}, [this, kind, completion = std::move(completion)](Outcomes outcomes) {
        Outcome& outcome = outcomes.at(0);
        if (!outcome.reply) seams_.log(kind + ": " + outcome.error);
        completion(outcome.reply ? std::move(outcome.reply->entry) : std::nullopt);
    });
}

}  // namespace zelto::host
