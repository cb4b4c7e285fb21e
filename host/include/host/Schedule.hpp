#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "runloop/Backoff.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::host {

/// What placed widgets show, and when the extension is asked for more. Timelines are what decodeReply lets
/// pass: some entries, in order. A pure function of what it is told:
/// it has no clock, and whoever drives it calls `at` no later than the instant that `nextInstant` names, and
/// whenever the clock was set.
class Schedule {
  public:
    /// A widget that starts with its stored timeline, if there is one, and wants a fresh one.
    void add(const std::string& id, std::optional<widgetkit::ArchivedTimeline> stored);
    void remove(const std::string& id);

    /// A new timeline is wanted as soon as possible, whatever pauses there are.
    void reload(const std::string& id);
    void reloadAll();

    /// One that is not seen asks for nothing and shows nothing new until it is seen again. All are, until it
    /// is said.
    void setSeen(const std::string& id, bool isSeen);
    bool isSeen(const std::string& id) const;
    bool isAnySeen() const;
    /// Whether it shows readings of the moment.
    void setLive(const std::string& id, bool isLive);
    bool isAnyLiveSeen() const;
    /// Live widgets are asked for again so many seconds after their last answer while they are seen; absent
    /// for when their timelines say.
    void refreshEvery(std::optional<double> seconds) { refresh_ = seconds; }
    /// A new timeline is wanted of a live one that shows what is older than ten seconds.
    void freshen(const std::string& id, Date now);

    /// Widgets to ask timelines for, side by side, and widgets that now show something else.
    struct Due {
        std::vector<std::string> requests;
        std::vector<std::string> shows;
    };
    /// What is due at `now`; the requests count as sent, and none is made where it is not to be asked yet. A
    /// clock that went backwards makes every timeline doubtful: all are asked for anew.
    Due at(Date now, bool mayAsk = true);
    /// The answer to such a request.
    void received(const std::string& id, widgetkit::ArchivedTimeline timeline, Date now);
    void failed(const std::string& id, Date now);

    /// The timeline of which it is; null before the first one.
    const widgetkit::ArchivedTimeline* timeline(const std::string& id) const;
    /// The entry on show; null before the first timeline.
    const widgetkit::ArchivedEntry* shown(const std::string& id) const;
    /// Whether its last request failed.
    bool isFailing(const std::string& id) const;
    /// When what it shows was made, if that is longer ago than twice the time after which it was to be
    /// replaced, and asking for it fails.
    std::optional<Date> oldSince(const std::string& id, Date now) const;
    /// When `at` has something to do next; absent while nothing is to come by itself.
    std::optional<Date> nextInstant() const;

    /// Reloads that fall due within this many seconds wait for the last of them, so that they go out
    /// together.
    static constexpr double together = 1;
    /// However soon a timeline wants to be replaced, so many seconds pass.
    static constexpr double shortestLife = 5;
    /// Between attempts for a widget whose requests fail, in seconds.
    static constexpr double firstPause = 2, longestPause = 300;
    /// How old readings may be, in seconds, when somebody turns to them.
    static constexpr double fresh = 10;

  private:
    struct Widget {
        std::optional<widgetkit::ArchivedTimeline> timeline = {};
        std::optional<widgetkit::ArchivedEntry> shown = {};
        bool isAsked = false, isSeen = true, isLive = false, isFailing = false;
        /// The timeline's; absent before the first one.
        std::optional<Date> madeAt = {};
        /// Of the last answer; absent before the first one, and after a failure.
        std::optional<Date> receivedAt = {};
        /// When to ask for the next timeline; absent for at once.
        std::optional<Date> askAt = {};
        runloop::Backoff backoff{firstPause, longestPause};
    };
    Date askingInstantOf(const Widget& widget) const;
    /// When the reloads that are due next go out.
    std::optional<Date> askingInstant() const;

    std::map<std::string, Widget> widgets_;
    std::optional<Date> last_;
    std::optional<double> refresh_;
};

}  // namespace zelto::host
