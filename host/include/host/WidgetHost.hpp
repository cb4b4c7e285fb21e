#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/DesktopLayoutStore.hpp"
#include "host/FileNews.hpp"
#include "host/Offers.hpp"
#include "host/Previews.hpp"
#include "host/Timelines.hpp"
#include "runloop/Log.hpp"

namespace zelto::host {

/// What the host reaches the world through.
struct HostSeams {
    std::function<Date()> now;
    std::function<texts::Environment()> environment;
    /// Asks the extension (ExtensionClient.hpp).
    std::function<void(std::vector<widgetkit::Request>, std::function<void(Outcomes)>)> ask;
    /// Replaces the instant at which `wake` is to be called; absent for none.
    std::function<void(std::optional<Date>)> wakeAt;
    runloop::Log log;
    /// At once without it.
    OnDisk onDisk = [](const auto& work, const auto& then) { then(work()); };
    /// Seconds after which readings of the moment are asked for again while they are seen; absent for when
    /// the timelines say. Told again every time, since it depends on the power.
    std::function<std::optional<double>()> refresh = [] { return std::nullopt; };
    /// Calls a function on the host's thread, after what else waits there. At once without it.
    std::function<void(std::function<void()>)> soon = [](const auto& function) { function(); };
};

/// Why a widget's picture is not what it should be.
struct PictureTrouble {
    enum class Kind { notOffered, noAnswer, old };
    Kind kind;
    /// When an old one was made.
    std::optional<Date> since = {};
    bool operator==(const PictureTrouble&) const = default;
};

/// What a person has to know of the layout.
struct LayoutTrouble {
    /// Its file made no sense, and is kept aside; it cannot be written; not all widgets have room.
    enum class Kind { broken, notSaved, noRoom };
    Kind kind;
    /// Of the system, for what cannot be written.
    std::string reason = {};
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
    /// What is wrong with a widget's picture from now on; absent for nothing.
    virtual void troubled(const PlacedWidget& widget, const std::optional<PictureTrouble>& trouble) = 0;
    virtual void troubled(const LayoutTrouble& trouble) = 0;
    /// A widget was removed, of which `undoRemoval` brings it back for a while.
    virtual void removed(const PlacedWidget& widget) = 0;
    /// The settings are others from now on.
    virtual void settingsChanged(const DesktopSettings& settings) = 0;
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
    /// What is wrong with its picture, as it was told last.
    std::optional<PictureTrouble> trouble(const std::string& id) const {
        const auto found = troubles_.find(id);
        return found == troubles_.end() ? std::nullopt : std::optional(found->second);
    }

    /// What became of a change on the disk.
    using Saved = std::function<void(const Result<void>&)>;

    /// Places a widget; its id. A kind that the extension is not known to offer is refused once it has told
    /// what it offers.
    Result<std::string> add(
        const std::string& kind, widgetkit::WidgetFamily family, const Wish& wish = {}, Saved saved = {});
    Result<void> remove(const std::string& id, Saved saved = {});
    /// Brings back what was removed last within ten seconds, or a widget of that; its id.
    Result<std::string> undoRemoval(const std::optional<std::string>& id = {});
    /// To a place where no other widget stands.
    Result<void> move(
        const std::string& id, const std::optional<std::string>& monitor, Cell cell, Saved saved = {});
    /// As a person means it: what stands there changes places with it.
    Result<void> move(const std::string& id, Slot slot, Saved saved = {});
    /// How many widgets stand in the way of one that is to go there: none, or one with which it would change
    /// places; absent where it cannot go.
    std::optional<std::size_t> inTheWay(const std::string& id, Slot slot) const;
    /// Whether a new widget could stand there.
    bool isFree(Slot slot, widgetkit::WidgetFamily family) const;
    /// To another monitor, as near to `cell` as there is room.
    Result<void> send(const std::string& id, std::size_t monitor, Cell cell, Saved saved = {});
    /// Moves it too when it would cover others where it stands.
    Result<void> setFamily(const std::string& id, widgetkit::WidgetFamily family, Saved saved = {});
    /// Asks for a new timeline of one widget, of all of a kind, or of all.
    Result<void> reload(const std::string& id);
    Result<void> reloadKind(const std::string& kind);
    void reloadAll();
    /// Takes over what a person changed in the layout's file, if anything.
    void takeOverEdits();
    std::filesystem::path layoutFile() const { return layouts_.file(); }

    DesktopSettings settings() const { return layout_.settings.value_or(DesktopSettings{}); }
    void set(const DesktopSettings& settings);
    /// Whether nothing was known of a layout when this started: whoever starts it for the first time wants to
    /// see what there is.
    bool isFirstStart() const { return isFirstStart_; }

    /// Seconds during which a removal can be undone.
    static constexpr double undoSeconds = 10;

  private:
    void startFromCopy();
    void forgetRemovals();
    void tick();
    void drawNext();
    void offersChanged();
    void adopt(DesktopLayout layout);
    void tellLive();
    void tellSeen();
    Result<void> change(Result<DesktopLayout> changed, Saved saved = {});
    void save(Saved saved = {});
    void tellArrangement();
    void tellTroubles(Date now);
    void written(const Result<void>& written);

    HostSeams seams_;
    HostObserver& observer_;
    ExtensionClient client_;
    DesktopLayoutStore layouts_;
    DesktopLayout layout_;
    std::size_t saves_ = 0;     // under way
    std::string refusal_;       // why the disk took no layout the last time
    std::size_t homeless_ = 0;  // widgets without room
    struct Removal {
        PlacedWidget widget;
        std::size_t index;
        Date at;
    };
    std::vector<Removal> removals_;
    std::map<std::string, PictureTrouble> troubles_;  // by id
    bool isFirstStart_ = false;
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
