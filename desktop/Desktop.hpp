#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CoverWatch.hpp"
#include "FrameWatch.hpp"
#include "GalleryWindow.hpp"
#include "UndoLine.hpp"
#include "WidgetWindow.hpp"
#include "host/DiskThread.hpp"
#include "host/ExtensionSupervisor.hpp"
#include "host/Folders.hpp"
#include "host/LinkOpener.hpp"
#include "host/SessionWatch.hpp"
#include "host/ZoneWatch.hpp"
#include "runloop/Log.hpp"
#include "runloop/MainLoop.hpp"
#include "runloop/PathWatch.hpp"
#include "runloop/WallTimer.hpp"

namespace zelto::desktop {

struct DesktopOptions {
    host::ExtensionOptions extension;
    host::Folders folders;
    std::string linkCommand;
    /// In place of the settings'.
    std::optional<double> zoom, refresh;
    /// In place of the environment's.
    std::optional<std::string> locale;
    /// Where the kernel's folders are.
    std::filesystem::path machine = "/";
    /// Widgets to be added, by kind and family.
    std::vector<std::pair<std::string, widgetkit::WidgetFamily>> additions;
    bool showsGallery = false, takesKeys = false;
    runloop::Log log = [](runloop::LogLevel, const std::string&) {};
    /// The bus of screen savers.
    bus::Address bus = bus::Address::session();
    /// Whether anybody sees a widget, from now on.
    std::function<void(bool isSeen)> seenChanged = [](bool) {};
    /// One of the additions cannot be: nothing was changed, and the log has said why.
    std::function<void()> refused = [] {};
};

/// The widgets on this display: the host, its windows, and what wakes them.
class Desktop : public host::HostObserver {
  public:
    /// The toolkit must have been set up.
    explicit Desktop(DesktopOptions options);
    ~Desktop() override;

    host::WidgetHost& host() { return *host_; }
    void showGallery();
    /// Gives the keys to the widget after the one that has them, or to the first.
    void focusNext();
    /// Changes "scale", "refresh" or "link-command" for the rest of this run.
    Result<void> setOption(const std::string& name, const std::string& value);

  private:
    void arranged(const std::vector<host::ArrangedWidget>& widgets) override;
    void shows(const host::PlacedWidget& widget, const widgetkit::ArchivedEntry& entry) override;
    void offers(const std::vector<widgetkit::WidgetDescription>& widgets) override;
    void seenChanged(bool isSeen) override { options_.seenChanged(isSeen); }
    void troubled(
        const host::PlacedWidget& widget, const std::optional<host::PictureTrouble>& trouble) override;
    void troubled(const host::LayoutTrouble& trouble) override;
    void removed(const host::PlacedWidget& widget) override;
    void settingsChanged(const host::DesktopSettings& settings) override;

    host::HostSeams seams();
    void watchMonitors();
    void watchAppearance();
    void monitorsChanged();
    /// The desktop's theme or text size, or a setting, is another one.
    void appearanceChanged();
    void wakeAt(std::optional<Date> instant);
    /// Calls `then` as soon as it is known which widgets are seen: nothing is asked for the others.
    void lookThen(std::function<void()> then);
    void watchClock();
    void watchPaths();
    void watchSight();
    /// The window of a widget, made if there is none.
    WidgetWindow& windowOf(const host::PlacedWidget& widget);
    void close(const std::string& id);
    bool walk(const std::string& from, Step step);
    void openLink(const std::string& id, const std::string& url);
    void linkOpened(const std::string& id, const Result<void, host::LinkFault>& opened);
    void add(const std::string& kind, widgetkit::WidgetFamily family, std::optional<host::Slot> slot);
    void placeFirst(const std::vector<widgetkit::WidgetDescription>& widgets);
    void undo(const std::optional<std::string>& id);
    void giveKeysToGallery();
    static void show(const std::optional<host::PictureTrouble>& trouble, WidgetView& view);
    std::string nameOf(const std::string& kind) const;
    /// On the screen, where people look first.
    void say(const std::string& text);

    DesktopOptions options_;
    DisplayBackend backend_;
    drawing::Renderer renderer_;
    host::LinkOpener links_;
    runloop::WallTimer timer_;
    host::ZoneWatch zone_;
    runloop::PathWatch paths_;
    runloop::MainSource timerSource_, zoneSource_, zoneDataSource_, pathSource_, folderSettled_, soon_,
        appearance_;
    host::DiskThread disk_, app_;
    std::unique_ptr<FrameWatch> frames_;
    std::map<std::string, std::unique_ptr<WidgetWindow>> windows_;
    std::vector<host::ArrangedWidget> arranged_;
    /// Of a widget whose window was closed last: where it stood, and whether it had the keys.
    struct Closed {
        std::string id;
        host::Slot slot;
        bool hadKeys;
    };
    std::optional<Closed> closed_;
    std::map<std::string, std::unique_ptr<UndoLine>> undoLines_;
    std::unique_ptr<GalleryWindow> gallery_;
    std::string unsaid_;
    std::vector<std::pair<std::string, widgetkit::WidgetFamily>> additions_;
    bool mayPlaceAll_ = true, isHighContrast_ = false, isScreenSeen_ = true;
    bool hasNoHandler_ = false;  // as far as the last link told
    // Ends first: its completions speak to all of the above.
    std::unique_ptr<host::WidgetHost> host_;
    std::unique_ptr<host::ExtensionSupervisor> supervisor_;
    std::unique_ptr<host::SessionWatch> session_;
    std::unique_ptr<CoverWatch> covers_;
};

}  // namespace zelto::desktop
