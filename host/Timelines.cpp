#include "host/Timelines.hpp"

#include <algorithm>
#include <utility>

namespace zelto::host {
namespace {

/// Whether one widget's timelines are also the other's.
bool showSame(const PlacedWidget& a, const PlacedWidget& b) {
    return a.id == b.id && a.kind == b.kind && a.family == b.family;
}

bool isAmong(const PlacedWidget& widget, const std::vector<PlacedWidget>& widgets) {
    return std::ranges::any_of(widgets, [&](const PlacedWidget& each) { return showSame(each, widget); });
}

}  // namespace

void Timelines::follow(const std::vector<PlacedWidget>& widgets) {
    const std::vector<PlacedWidget> before = std::exchange(widgets_, widgets);
    bool isAnyGone = false;
    for (const PlacedWidget& old : before) {
        if (isAmong(old, widgets_)) continue;
        schedule_.remove(old.id);
        failures_.erase(old.id);
        isAnyGone = true;
    }
    if (isAnyGone) forgetOthers();
    for (const PlacedWidget& widget : widgets_)
        if (!isAmong(widget, before)) schedule_.add(widget.id, store_.load(widget));
}

void Timelines::forgetOthers() const {
    // After what is still to be stored: it may be of one that is gone.
    onDisk_(
        [store = store_, widgets = widgets_]() -> Result<void> {
            store.keepOnly(widgets);
            return {};
        },
        [](const Result<void>&) {});
}

std::vector<std::string> Timelines::tick(Date now) {
    auto [requests, shows] = schedule_.at(now);
    if (!requests.empty()) ask(requests);
    return std::move(shows);
}

void Timelines::ask(const std::vector<std::string>& ids) {
    std::vector<widgetkit::Request> requests;
    std::vector<PlacedWidget> asked;
    for (const PlacedWidget& widget : widgets_) {
        if (std::ranges::find(ids, widget.id) == ids.end()) continue;
        requests.push_back(
            seams_.client.request(widgetkit::RequestKind::timeline, widget.kind, widget.family));
        asked.push_back(widget);
    }
    seams_.client.ask(std::move(requests), [this, asked = std::move(asked)](Outcomes&& outcomes) {
        for (auto& [place, outcome] : outcomes) received(asked.at(place), std::move(outcome));
        seams_.changed();
    });
}

void Timelines::received(const PlacedWidget& asked, Outcome outcome) {
    // Another family was chosen, or the widget was removed, since then.
    if (!isAmong(asked, widgets_)) return;
    if (!outcome) {
        failed(asked, outcome.fault().reason);
        return;
    }
    if (!outcome->reply.timeline) {
        failed(asked, "an answer without a timeline");
        return;
    }
    failures_.erase(asked.id);
    unsaved_[asked.id] = {asked, std::move(outcome->line)};
    schedule_.received(asked.id, *std::move(outcome->reply.timeline), seams_.now());
}

void Timelines::storeDrawn(const std::deque<std::string>& undrawn) {
    for (auto each = unsaved_.begin(); each != unsaved_.end();) {
        if (std::ranges::find(undrawn, each->first) != undrawn.end()) {
            ++each;
            continue;
        }
        auto drawn = std::move(each->second);
        each = unsaved_.erase(each);
        if (!isAmong(drawn.first, widgets_)) continue;
        const std::string kind = drawn.first.kind;
        onDisk_(
            [store = store_, drawn = std::move(drawn)] { return store.save(drawn.first, drawn.second); },
            [this, kind](const Result<void>& saved) {
                if (!saved)
                    seams_.log("the timeline of " + kind + " cannot be stored: " + saved.fault().text());
            });
    }
}

void Timelines::failed(const PlacedWidget& widget, const std::string& why) {
    schedule_.failed(widget.id, seams_.now());
    // One cause is told once, however often it is tried again.
    if (std::exchange(failures_[widget.id], why) != why)
        seams_.log(widget.kind + ", " + std::string(records::nameOf(widget.family)) + ": " + why);
}

}  // namespace zelto::host
