#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "drawing/Renderer.hpp"
#include "host/DesktopInterface.hpp"
#include "tests/desktop/Display.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/PrivateBus.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

/// Whether a condition comes to hold; asked again and again for at most half a minute.
bool eventually(const std::function<bool()>& condition);

/// The real host on a display of its own, with folders, a bus and a program for links of its own.
class RunningDesktop {
  public:
    /// Assistive technology costs a process more; only its test wants it.
    explicit RunningDesktop(Display& display, bool isAccessible = false);

    void place(const std::vector<host::PlacedWidget>& widgets) const;
    void start(std::vector<std::string> arguments = {}, const std::vector<std::string>& variables = {});
    /// The same without waiting for anything.
    void launch(std::vector<std::string> arguments = {}, const std::vector<std::string>& variables = {});
    /// Ends it as a logout does; true when it goes willingly.
    bool stop();
    Child& process() { return *process_; }
    /// Without what this kernel, or a build with sanitizers, lacks to confine the extension.
    std::string log() const;

    std::vector<host::PlacedWidget> widgets();
    bus::Result<bus::Values> call(const std::string& method, const bus::Values& arguments = {});
    Finished zelto(std::vector<std::string> words) const;

    /// What a widget's stored timeline shows now; absent while there is none.
    std::optional<widgetkit::ArchivedEntry> entry(const host::PlacedWidget& widget) const;
    layout::DisplayList displayList(const host::PlacedWidget& widget);
    /// Whether the display shows just that, but for the seconds of a countdown.
    /// `left` is where its monitor begins; up to `tolerance` of 255 each channel may be off on the average.
    bool isSeen(
        const host::PlacedWidget& widget, double zoom = 1, double pixelsPerUnit = 1, double tolerance = 0,
        int left = 0);
    /// Every one of them.
    bool allSeen();
    /// Of a point of a widget, on the display.
    static std::pair<int, int> onDisplay(const host::PlacedWidget& widget, layout::Point point);

    /// The next link that the registered program got.
    std::optional<std::string> openedLink() { return opened_.line(); }
    /// What a screen saver says on the bus.
    void screenSaver(bool isActive) const;
    /// Whether the host tells other programs just that.
    bool tellsSeen(bool isSeen) const;
    /// The message bus ends, and another one takes its place.
    void restartBus() { bus_.restart(); }
    /// Nothing opens links any more.
    void forgetHandler() const;

    const std::filesystem::path& folder() const { return folder_.path(); }
    std::vector<std::string> environment() const;
    Display& display() { return display_; }

  private:
    Display& display_;
    bool isAccessible_;
    TemporaryFolder folder_;
    PrivateBus bus_;
    Child opened_;
    bus::Connection connection_;
    drawing::Renderer renderer_;
    std::optional<Child> process_;
};

}  // namespace zelto::test
