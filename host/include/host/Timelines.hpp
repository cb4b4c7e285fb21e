#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/DiskThread.hpp"
#include "host/EntryStore.hpp"
#include "host/ExtensionClient.hpp"
#include "host/PlacedWidget.hpp"
#include "host/Schedule.hpp"

namespace zelto::host {

/// The placed widgets' timelines: asked for when they are due, kept for the next start, and what they show
/// now. For one thread.
class Timelines {
  public:
    Timelines(EntryStore store, AskerSeams seams, OnDisk onDisk)
        : store_(std::move(store)), seams_(std::move(seams)), onDisk_(std::move(onDisk)) {}

    /// From now on these are the widgets. A new one, and one of another kind or family than before, shows
    /// what is stored of it and wants a fresh timeline. What is stored of one that is gone is deleted.
    void follow(const std::vector<PlacedWidget>& widgets);
    /// Deletes what is stored of all others, also from before the start.
    void forgetOthers();

    /// Asks for what is due; the ids of widgets that show something else from now on.
    std::vector<std::string> tick(Date now, bool mayAsk);
    /// Drops the stored timeline of which the last run died, if it did, and returns what it was.
    std::optional<std::string> dropUnfinished() { return store_.dropUnfinished(); }
    /// Shows a widget, so that a death of it is known at the next start.
    void whileDrawing(const PlacedWidget& widget, const std::function<void()>& draw) const {
        store_.whileDrawing(widget.look(), draw);
    }
    /// Stores what has come of widgets that are not about to be drawn, so that nothing is kept for the next
    /// start that cannot be.
    void storeDrawn(const std::deque<std::string>& undrawn);
    /// When `tick` has something to do next.
    std::optional<Date> nextInstant() const { return schedule_.nextInstant(); }
    /// New timelines are wanted as soon as possible.
    void reload(const std::string& id) { schedule_.reload(id); }
    void reloadAll() { schedule_.reloadAll(); }

    /// Whether one is seen; which kinds show readings of the moment; how often those are asked for
    /// (Schedule.hpp).
    void setSeen(const std::string& id, bool isSeen) { schedule_.setSeen(id, isSeen); }
    bool isAnySeen() const { return schedule_.isAnySeen(); }
    void setLive(const std::function<bool(const std::string& kind)>& isLive);
    bool isAnyLiveSeen() const { return schedule_.isAnyLiveSeen(); }
    void refreshEvery(std::optional<double> seconds) { schedule_.refreshEvery(seconds); }
    void freshen(const std::string& id) { schedule_.freshen(id, seams_.now()); }
    /// New timelines are wanted of all widgets of some kinds.
    void reloadKinds(const std::set<std::string>& kinds);

    /// As the schedule says (Schedule.hpp).
    bool isFailing(const std::string& id) const { return schedule_.isFailing(id); }
    std::optional<Date> oldSince(const std::string& id, Date now) const {
        return schedule_.oldSince(id, now);
    }
    /// Null before the first timeline.
    const widgetkit::ArchivedEntry* shown(const std::string& id) const { return schedule_.shown(id); }

  private:
    void ask(const std::vector<std::string>& ids);
    void received(const PlacedWidget& asked, Outcome outcome);
    void failed(const PlacedWidget& widget, const std::string& why);

    EntryStore store_;
    AskerSeams seams_;
    OnDisk onDisk_;
    Schedule schedule_;
    std::vector<PlacedWidget> widgets_;
    std::map<Look, std::string> unsaved_;          // replies that are not drawn yet
    std::set<Look> stored_;                        // whose latest timeline is on the disk
    std::string refusal_;                          // why the disk took nothing the last time
    std::map<std::string, std::string> failures_;  // of widgets whose last request failed, by id
};

}  // namespace zelto::host
