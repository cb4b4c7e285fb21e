#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/EntryStore.hpp"
#include "host/ExtensionProcess.hpp"
#include "host/PlacementStore.hpp"
#include "host/Schedule.hpp"
#include "platform/foundation/Environment.hpp"

namespace zelto::host {

/// What the host reaches the world through.
struct HostSeams {
    std::function<Date()> now;
    std::function<Environment()> environment;
    /// Asks the extension; the completion runs on the host's thread, later, with what became of each request,
    /// in one call or in several.
    std::function<void(std::vector<Request>, std::function<void(Outcomes)>)> ask;
    /// Replaces the instant at which `wake` is to be called; absent for none.
    std::function<void(std::optional<Date>)> wakeAt;
    std::function<void(const std::string&)> log;
};

/// Is told what there is to see.
class HostObserver {
  public:
    virtual ~HostObserver() = default;
    /// A widget was placed, moved, or given another family.
    virtual void placed(const PlacedWidget& widget) = 0;
    virtual void removed(const std::string& id) = 0;
    virtual void shows(const PlacedWidget& widget, const ArchivedEntry& entry) = 0;
    /// The extension told which widgets there are.
    virtual void offers(const std::vector<WidgetDescription>& widgets) = 0;
};

/// The widget host without a window: which widgets stand where, what they show and when, and what the
/// extension is asked. For one thread. Knows no widget by name.
class WidgetHost {
  public:
    WidgetHost(HostSeams seams, PlacementStore placements, EntryStore entries, HostObserver& observer);

    /// Places what was placed, shows what was stored, and asks for what is new.
    void start();
    /// The instant asked for has come, or the clock was set, or the computer was suspended.
    void wake();
    /// Texts are to be made for another time zone, or the clock was set: everything is asked for anew.
    void environmentChanged();

    /// Widgets without a monitor's name stand on this one.
    void nameFirstMonitor(const std::string& name) { firstMonitor_ = name; }

    const std::vector<PlacedWidget>& widgets() const { return widgets_; }
    const std::vector<WidgetDescription>& offered() const { return offered_; }
    const PlacedWidget* find(const std::string& id) const;
    const WidgetDescription* describe(const std::string& kind) const;
    const ArchivedEntry* shown(const std::string& id) const { return schedule_.shown(id); }

    /// A wish that makes no sense is answered with why; an empty answer is consent.
    using Refusal = std::string;

    /// Places a widget at `cell`, or where there is room on a desktop of `columns` tiles; `id` becomes its
    /// name. A kind that the extension is not known to offer is refused once it has told what it offers.
    Refusal add(
        const std::string& kind, WidgetFamily family, std::optional<Cell> cell, std::int64_t columns,
        std::string& id);
    Refusal remove(const std::string& id);
    /// To a place where no other widget stands.
    Refusal move(const std::string& id, const std::optional<std::string>& monitor, Cell cell);
    /// Moves it too when it would cover others where it stands.
    Refusal setFamily(const std::string& id, WidgetFamily family, std::int64_t columns);
    /// Asks for a new timeline of one widget, of all of a kind, or of all.
    Refusal reload(const std::string& id);
    Refusal reloadKind(const std::string& kind);
    void reloadAll();
    /// Takes over what a person changed in the file of places, if anything.
    void takeOverEdits();

    /// Asks for the gallery's look of a widget. The completion gets nothing when that fails.
    void preview(
        const std::string& kind, WidgetFamily family,
        std::function<void(const std::optional<ArchivedEntry>&)> completion);

    /// Room for a widget among those that stand on a monitor.
    Cell roomFor(
        WidgetFamily family, const std::optional<std::string>& monitor, std::int64_t columns,
        const std::string& except = {}) const;

  private:
    PlacedWidget* findMutable(const std::string& id);
    bool isFree(const PlacedWidget& widget, std::int64_t columns) const;
    bool isSameMonitor(const std::optional<std::string>& a, const std::optional<std::string>& b) const;
    void take(std::vector<PlacedWidget> widgets);
    void save();
    void tick();
    void askForTimelines(const std::vector<std::string>& ids);
    void received(const PlacedWidget& asked, Outcome outcome);
    void failed(const PlacedWidget& widget, const std::string& fault);
    Request request(RequestKind kind) const;
    void askForOffers();

    HostSeams seams_;
    PlacementStore placements_;
    EntryStore entries_;
    HostObserver& observer_;
    Schedule schedule_;
    std::vector<PlacedWidget> widgets_;
    std::vector<WidgetDescription> offered_;
    Environment environment_;
    std::map<std::string, std::string> faults_;  // of widgets whose last request failed
    std::string firstMonitor_;
    bool isAskingForOffers_ = false;
    Date askForOffersAt_{};
    Backoff offersBackoff_{Schedule::firstPause, Schedule::longestPause};
};

}  // namespace zelto::host
