#include "host/Schedule.hpp"

#include <algorithm>
#include <iterator>
#include <limits>

namespace zelto::host {
namespace {

/// A clock that is set back by less is only being steered.
constexpr double steering = 1;

constexpr Date longAgo{-std::numeric_limits<double>::infinity()};

/// The last entry whose date has come; before all of them, the first.
const widgetkit::ArchivedEntry& entryAt(const widgetkit::ArchivedTimeline& timeline, Date now) {
    const auto next = std::ranges::upper_bound(timeline.entries, now, {}, &widgetkit::ArchivedEntry::date);
    return next == timeline.entries.begin() ? *next : *std::prev(next);
}

}  // namespace

void Schedule::add(const std::string& id, std::optional<widgetkit::ArchivedTimeline> stored) {
    Widget& widget = widgets_[id] = Widget{};
    if (stored) widget.madeAt = stored->entries.front().date;
    widget.timeline = std::move(stored);
}

void Schedule::remove(const std::string& id) {
    widgets_.erase(id);
}

void Schedule::reload(const std::string& id) {
    if (const auto found = widgets_.find(id); found != widgets_.end()) found->second.askAt.reset();
}

void Schedule::reloadAll() {
    for (auto& [id, widget] : widgets_) widget.askAt.reset();
}

void Schedule::setSeen(const std::string& id, bool isSeen) {
    if (const auto found = widgets_.find(id); found != widgets_.end()) found->second.isSeen = isSeen;
}

bool Schedule::isSeen(const std::string& id) const {
    const auto found = widgets_.find(id);
    return found == widgets_.end() || found->second.isSeen;
}

bool Schedule::isAnySeen() const {
    return std::ranges::any_of(widgets_, [](const auto& each) { return each.second.isSeen; });
}

void Schedule::setLive(const std::string& id, bool isLive) {
    if (const auto found = widgets_.find(id); found != widgets_.end()) found->second.isLive = isLive;
}

bool Schedule::isAnyLiveSeen() const {
    return std::ranges::any_of(
        widgets_, [](const auto& each) { return each.second.isSeen && each.second.isLive; });
}

void Schedule::freshen(const std::string& id, Date now) {
    const auto found = widgets_.find(id);
    if (found == widgets_.end() || !found->second.isLive) return;
    const auto& receivedAt = found->second.receivedAt;
    if (receivedAt && now - *receivedAt > fresh) found->second.askAt.reset();
}

Date Schedule::askingInstantOf(const Widget& widget) const {
    const Date due = widget.askAt.value_or(longAgo);
    return refresh_ && widget.isLive && widget.receivedAt ? std::min(due, *widget.receivedAt + *refresh_)
                                                          : due;
}

std::optional<Date> Schedule::askingInstant() const {
    std::optional<Date> first, last;
    const auto isWaiting = [](const Widget& widget) { return widget.isSeen && !widget.isAsked; };
    for (const auto& [id, widget] : widgets_) {
        if (!isWaiting(widget)) continue;
        const Date due = askingInstantOf(widget);
        first = first ? std::min(*first, due) : due;
    }
    last = first;
    for (const auto& [id, widget] : widgets_) {
        const Date due = askingInstantOf(widget);
        if (isWaiting(widget) && due <= *first + together) last = std::max(*last, due);
    }
    return last;
}

Schedule::Due Schedule::at(Date now, bool mayAsk) {
    if (last_ && now < *last_ - steering) reloadAll();
    last_ = now;

    Due due;
    const auto asking = askingInstant();
    for (auto& [id, widget] : widgets_) {
        if (!widget.isSeen) continue;
        if (mayAsk && asking && *asking <= now && !widget.isAsked && askingInstantOf(widget) <= now) {
            widget.isAsked = true;
            // What is due again before the answer is there waits for it: only a reload asks for more.
            widget.askAt = Date{std::numeric_limits<double>::infinity()};
            due.requests.push_back(id);
        }
        if (!widget.timeline) continue;
        const widgetkit::ArchivedEntry& current = entryAt(*widget.timeline, now);
        const bool isNew = !widget.shown || widget.shown->view != current.view;
        if (!widget.shown || *widget.shown != current) widget.shown = current;
        if (isNew) due.shows.push_back(id);
    }
    return due;
}

void Schedule::received(const std::string& id, widgetkit::ArchivedTimeline timeline, Date now) {
    const auto found = widgets_.find(id);
    if (found == widgets_.end()) return;
    Widget& widget = found->second;
    widget.isAsked = false;
    widget.receivedAt = widget.madeAt = now;
    widget.isFailing = false;
    widget.backoff.succeeded();
    // A reload that came while the answer was under way still wants a new one.
    if (widget.askAt) widget.askAt = std::max(timeline.reloadAfter, now + shortestLife);
    widget.timeline = std::move(timeline);
}

void Schedule::failed(const std::string& id, Date now) {
    const auto found = widgets_.find(id);
    if (found == widgets_.end()) return;
    Widget& widget = found->second;
    widget.isAsked = false;
    widget.isFailing = true;
    widget.receivedAt.reset();
    widget.backoff.failed();
    if (widget.askAt) widget.askAt = now + widget.backoff.pause();
}

const widgetkit::ArchivedTimeline* Schedule::timeline(const std::string& id) const {
    const auto found = widgets_.find(id);
    return found != widgets_.end() && found->second.timeline ? &*found->second.timeline : nullptr;
}

const widgetkit::ArchivedEntry* Schedule::shown(const std::string& id) const {
    const auto found = widgets_.find(id);
    return found != widgets_.end() && found->second.shown ? &*found->second.shown : nullptr;
}

bool Schedule::isFailing(const std::string& id) const {
    const auto found = widgets_.find(id);
    return found != widgets_.end() && found->second.isFailing;
}

std::optional<Date> Schedule::oldSince(const std::string& id, Date now) const {
    const auto found = widgets_.find(id);
    if (found == widgets_.end()) return std::nullopt;
    const Widget& widget = found->second;
    if (!widget.isFailing || !widget.timeline || !widget.madeAt) return std::nullopt;
    const double interval = std::max(widget.timeline->reloadAfter - *widget.madeAt, shortestLife);
    return now - *widget.madeAt > 2 * interval ? widget.madeAt : std::nullopt;
}

std::optional<Date> Schedule::nextInstant() const {
    std::optional<Date> next = askingInstant();
    const auto consider = [&next](Date date) { next = next ? std::min(*next, date) : date; };
    for (const auto& [id, widget] : widgets_) {
        if (!widget.timeline || !widget.isSeen) continue;
        for (const widgetkit::ArchivedEntry& entry : widget.timeline->entries)
            if (!last_ || entry.date > *last_) consider(entry.date);
    }
    return next;
}

}  // namespace zelto::host
