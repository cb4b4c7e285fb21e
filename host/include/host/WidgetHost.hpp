#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/DesktopLayoutStore.hpp"
#include "host/FileNews.hpp"
#include "host/Offers.hpp"
#include "host/Previews.hpp"
#include "host/Timelines.hpp"

namespace zelto::host {

/// What the host reaches the world through.
struct HostSeams {
    std::function<Date()> now;
    std::function<texts::Environment()> environment;
    /// Asks the extension (ExtensionClient.hpp).
    std::function<void(std::vector<widgetkit::Request>, std::function<void(Outcomes)>)> ask;
    /// Replaces the instant at which `wake` is to be called; absent for none.
    std::function<void(std::optional<Date>)> wakeAt;
    std::function<void(const std::string&)> log;
    /// At once without it.
    OnDisk onDisk = [](const auto& work, const auto& then) { then(work()); };
    /// Seconds after which readings of the moment are asked for again while they are seen; absent for when
    /// the timelines say. Told again every time, since it depends on the power.
    std::function<std::optional<double>()> refresh = [] { return std::nullopt; };
    /// Calls a function on the host's thread, after what else waits there. At once without it.
    std::function<void(std::function<void()>)> soon = [](const auto& function) { function(); };
};

/// Is told what there is to see.
class HostObserver {
  public:
    virtual ~HostObserver() = default;
    /// All widgets, and where they are now: something of that has changed.
    virtual void arranged(const std::vector<ArrangedWidget>& widgets) = 0;
    virtual void shows(const PlacedWidget& widget, const widgetkit::ArchivedEntry& entry) = 0;
    /// The extension told which widgets there are, and of which folders it sees no more than was there when
    /// it started.
    virtual void offers(const std::vector<widgetkit::WidgetDescription>& widgets) = 0;
    /// Whether anybody sees a widget, from now on.
    virtual void seenChanged(bool isSeen) = 0;
};

/// The widget host without a window: carries what happens on the desktop to its layout and its timelines, and
/// back what there is to see. For one thread. Knows no widget by name.
class WidgetHost {
  public:
    WidgetHost(HostSeams seams, DesktopLayoutStore layouts, EntryStore entries, HostObserver& observer);
    WidgetHost(const WidgetHost&) = delete;
    WidgetHost& operator=(const WidgetHost&) = delete;

    /// Places what was placed, shows what was stored, and asks for what is new.
    void start();
    /// The instant asked for has come, or the clock was set, or the computer was suspended.
    void wake();
    /// Texts are to be made for another time zone, or the clock was set: everything is asked for again.
    void environmentChanged();
    /// These are the monitors from now on, at least one; to be told whenever one of them changes.
    void setMonitors(Monitors monitors);

    /// A widget came into sight, or is out of sight from now on: it then asks for nothing and shows nothing
    /// new.
    void setSeen(const std::string& id, bool isSeen);
    /// Whether anybody sees a widget at all.
    bool isSeen() const { return timelines_.isAnySeen(); }
    /// Somebody turns to a widget; or, without one, the machine woke up: readings are to be of the moment.
    void freshen(const std::optional<std::string>& id = {});
    /// Files changed, of those that the offered widgets are made from.
    void filesChanged(const std::set<std::string>& files);

    const std::vector<PlacedWidget>& widgets() const { return layout_.widgets; }
    const Offers& offers() const { return offers_; }
    const Previews& previews() const { return previews_; }
    const widgetkit::ArchivedEntry* shown(const std::string& id) const { return timelines_.shown(id); }

    /// What became of a change on the disk.
    using Saved = std::function<void(const Result<void>&)>;

    /// Places a widget on the first monitor, at `cell` if that is free, otherwise where there is room; its
    /// id. A kind that the extension is not known to offer is refused once it has told what it offers.
    Result<std::string> add(
        const std::string& kind, widgetkit::WidgetFamily family, std::optional<Cell> cell = {},
        Saved saved = {});
    Result<void> remove(const std::string& id, Saved saved = {});
    /// To a place where no other widget stands.
    Result<void> move(
        const std::string& id, const std::optional<std::string>& monitor, Cell cell, Saved saved = {});
    Result<void> move(const std::string& id, Slot slot, Saved saved = {});
    /// Moves it too when it would cover others where it stands.
    Result<void> setFamily(const std::string& id, widgetkit::WidgetFamily family, Saved saved = {});
    /// Asks for a new timeline of one widget, of all of a kind, or of all.
    Result<void> reload(const std::string& id);
    Result<void> reloadKind(const std::string& kind);
    void reloadAll();
    /// Takes over what a person changed in the layout's file, if anything.
    void takeOverEdits();

  private:
    void tick();
    void drawNext();
    void offersChanged();
    void adopt(DesktopLayout layout);
    void tellLive();
    void tellSeen();
    Result<void> change(Result<DesktopLayout> changed, Saved saved = {});
    void save(Saved saved = {});
    void tellArrangement();

    HostSeams seams_;
    HostObserver& observer_;
    ExtensionClient client_;
    DesktopLayoutStore layouts_;
    DesktopLayout layout_;
    std::size_t saves_ = 0;            // under way
    std::deque<std::string> undrawn_;  // ids; one is drawn at a time, and calls are answered in between
    bool isDrawing_ = false;           // the next one is to come
    bool mayAsk_ = false;              // once what was stored is shown
    Monitors monitors_;
    Timelines timelines_;
    Offers offers_;
    Previews previews_;
    FileNews news_;
    bool wasSeen_ = true;
};

}  // namespace zelto::host
