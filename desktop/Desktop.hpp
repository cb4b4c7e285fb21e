#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CoverWatch.hpp"
#include "FrameWatch.hpp"
#include "Gallery.hpp"
#include "WidgetWindow.hpp"
#include "host/DiskThread.hpp"
#include "host/ExtensionSupervisor.hpp"
#include "host/Folders.hpp"
#include "host/LinkOpener.hpp"
#include "host/MainLoop.hpp"
#include "host/PathWatch.hpp"
#include "host/SessionWatch.hpp"
#include "host/WallTimer.hpp"
#include "host/ZoneWatch.hpp"

namespace zelto::desktop {

struct DesktopOptions {
    host::ExtensionOptions extension;
    host::Folders folders;
    std::string linkCommand;
    std::optional<double> zoom;
    /// Seconds between readings of the moment while they are seen and the machine is not on its battery; 0
    /// for when the timelines say.
    double refresh = 30;
    /// Where the kernel's folders are.
    std::filesystem::path machine = "/";
    /// Widgets to be added, by kind and family.
    std::vector<std::pair<std::string, widgetkit::WidgetFamily>> additions;
    bool showsGallery = false, takesKeys = false;
    std::function<void(const std::string&)> log;
    /// The bus of screen savers.
    bus::Address bus = bus::Address::session();
    /// Whether anybody sees a widget, from now on.
    std::function<void(bool isSeen)> seenChanged = [](bool) {};
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

  private:
    void arranged(const std::vector<host::ArrangedWidget>& widgets) override;
    void shows(const host::PlacedWidget& widget, const widgetkit::ArchivedEntry& entry) override;
    void offers(const std::vector<widgetkit::WidgetDescription>& widgets) override;
    void seenChanged(bool isSeen) override { options_.seenChanged(isSeen); }

    host::HostSeams seams();
    void watchMonitors();
    void monitorsChanged();
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
    void add(const std::string& kind, widgetkit::WidgetFamily family, std::optional<host::Cell> cell);

    DesktopOptions options_;
    DisplayBackend backend_;
    drawing::Renderer renderer_;
    host::LinkOpener links_;
    host::WallTimer timer_;
    host::ZoneWatch zone_;
    host::PathWatch paths_;
    host::MainSource timerSource_, zoneSource_, zoneDataSource_, pathSource_, folderSettled_, soon_;
    host::DiskThread disk_;
    std::unique_ptr<FrameWatch> frames_;
    std::map<std::string, std::unique_ptr<WidgetWindow>> windows_;
    std::vector<host::ArrangedWidget> arranged_;
    std::unique_ptr<Gallery> gallery_;
    bool isFirstStart_ = false, isScreenSeen_ = true;
    // Ends first: its completions speak to all of the above.
    std::unique_ptr<host::WidgetHost> host_;
    std::unique_ptr<host::ExtensionSupervisor> supervisor_;
    std::unique_ptr<host::SessionWatch> session_;
    std::unique_ptr<CoverWatch> covers_;
};

}  // namespace zelto::desktop
