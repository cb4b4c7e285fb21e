#include "host/Timelines.hpp"

#include <algorithm>
#include <utility>

namespace zelto::host {
namespace {

/// Whether one widget's timelines are also the other's.
bool showSame(const PlacedWidget& a, const PlacedWidget& b) {
    return a.id == b.id && a.look() == b.look();
}

/// Whether a start would show the same of both.
bool showAlike(const widgetkit::ArchivedTimeline& a, const widgetkit::ArchivedTimeline& b) {
    if (a.entries.size() == 1 && b.entries.size() == 1)
        return a.entries.front().view == b.entries.front().view;
    return a.entries == b.entries;
}

std::set<Look> looksOf(const std::vector<PlacedWidget>& widgets) {
    std::set<Look> out;
    for (const PlacedWidget& widget : widgets) out.insert(widget.look());
    return out;
}

bool isAmong(const PlacedWidget& widget, const std::vector<PlacedWidget>& widgets) {
    return std::ranges::any_of(widgets, [&](const PlacedWidget& each) { return showSame(each, widget); });
}

}  // namespace

void Timelines::follow(const std::vector<PlacedWidget>& widgets) {
    const std::vector<PlacedWidget> before = std::exchange(widgets_, widgets);
    bool isAnyGone = false;
    // One that is shown in another size stands where it stood.
    std::set<std::string> hidden;
    for (const PlacedWidget& old : before) {
        if (isAmong(old, widgets_)) continue;
        if (!schedule_.isSeen(old.id)) hidden.insert(old.id);
        schedule_.remove(old.id);
        failures_.erase(old.id);
        isAnyGone = true;
    }
    if (isAnyGone) forgetOthers();
    std::map<Look, std::optional<widgetkit::ArchivedTimeline>> loaded;
    for (const PlacedWidget& widget : widgets_) {
        if (isAmong(widget, before)) continue;
        const auto [stored, isFirst] = loaded.try_emplace(widget.look());
        if (isFirst) stored->second = store_.load(widget.look());
        if (stored->second) stored_.insert(widget.look());
        schedule_.add(widget.id, stored->second);
        if (hidden.contains(widget.id)) schedule_.setSeen(widget.id, false);
    }
}

void Timelines::setLive(const std::function<bool(const std::string& kind)>& isLive) {
    for (const PlacedWidget& widget : widgets_) schedule_.setLive(widget.id, isLive(widget.kind));
}

void Timelines::reloadKinds(const std::set<std::string>& kinds) {
    for (const PlacedWidget& widget : widgets_)
        if (kinds.contains(widget.kind)) schedule_.reload(widget.id);
}

void Timelines::forgetOthers() {
    const std::set<Look> looks = looksOf(widgets_);
    std::erase_if(stored_, [&](const Look& look) { return !looks.contains(look); });
    // After what is still to be stored: it may be of one that is gone.
    onDisk_(
        [store = store_, looks]() -> Result<void> {
            store.keepOnly(looks);
            return {};
        },
        [](const Result<void>&) {});
}

std::vector<std::string> Timelines::tick(Date now, bool mayAsk) {
    auto [requests, shows] = schedule_.at(now, mayAsk);
    if (!requests.empty()) ask(requests);
    return std::move(shows);
}

void Timelines::ask(const std::vector<std::string>& ids) {
    std::vector<widgetkit::Request> requests;
    // Copies of one widget are asked for once.
    std::vector<std::vector<PlacedWidget>> asked;
    for (const PlacedWidget& widget : widgets_) {
        if (std::ranges::find(ids, widget.id) == ids.end()) continue;
        const auto copies = std::ranges::find_if(
            asked, [&](const auto& each) { return each.front().look() == widget.look(); });
        if (copies != asked.end()) {
            copies->push_back(widget);
            continue;
        }
        requests.push_back(
            seams_.client.request(widgetkit::RequestKind::timeline, widget.kind, widget.family));
        asked.push_back({widget});
    }
    seams_.client.ask(std::move(requests), [this, asked = std::move(asked)](Outcomes&& outcomes) {
        for (auto& [place, outcome] : outcomes) {
            const auto& copies = asked.at(place);
            for (std::size_t i = 1; i < copies.size(); ++i) received(copies[i], outcome);
            received(copies.front(), std::move(outcome));
        }
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
    widgetkit::ArchivedTimeline& timeline = *outcome->reply.timeline;
    const auto* before = schedule_.timeline(asked.id);
    if (!before || !stored_.contains(asked.look()) || !showAlike(*before, timeline)) {
        stored_.erase(asked.look());
        unsaved_[asked.look()] = std::move(outcome->line);
    }
    schedule_.received(asked.id, std::move(timeline), seams_.now());
}

void Timelines::storeDrawn(const std::deque<std::string>& undrawn) {
    if (unsaved_.empty()) return;
    // What nobody sees is not drawn either, until it is seen.
    std::set<Look> drawn;
    for (const PlacedWidget& widget : widgets_)
        if (schedule_.isSeen(widget.id) && std::ranges::find(undrawn, widget.id) == undrawn.end())
            drawn.insert(widget.look());
    const std::set<Look> looks = looksOf(widgets_);
    std::erase_if(unsaved_, [&](const auto& each) { return !looks.contains(each.first); });
    for (const Look& look : drawn) {
        auto unsaved = unsaved_.extract(look);
        if (unsaved.empty()) continue;
        onDisk_(
            [store = store_, look, line = std::move(unsaved.mapped())] { return store.save(look, line); },
            [this, look](const Result<void>& saved) {
                // The next one is refused for the same reason.
                if (!saved && std::exchange(refusal_, saved.fault().reason) != saved.fault().reason)
                    seams_.log("the timeline of " + look.kind + " cannot be stored: " + saved.fault().text());
                if (!saved) return;
                refusal_.clear();
                if (looksOf(widgets_).contains(look) && !unsaved_.contains(look)) stored_.insert(look);
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
