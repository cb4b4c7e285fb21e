#pragma once

#include <functional>
#include <gtkmm/gesturedrag.h>
#include <gtkmm/menu.h>
#include <memory>
#include <optional>
#include <utility>

#include "DisplayBackend.hpp"
#include "DragIcon.hpp"
#include "LowWindow.hpp"
#include "Walking.hpp"
#include "WidgetView.hpp"
#include "host/WidgetHost.hpp"
#include "runloop/MainLoop.hpp"

namespace zelto::desktop {

/// A placed widget's window: a tap opens links, a drag moves it on the grid, a menu and keys do the rest.
class WidgetWindow : public LowWindow {
  public:
    struct Seams {
        host::WidgetHost& host;
        const DisplayBackend& backend;
        WidgetView::Seams view;
        /// Whether other programs' windows hide one.
        std::function<bool(GdkWindow*)> isHidden;
        /// Whether the screen is seen, whatever stands on it.
        std::function<bool()> isScreenSeen;
        /// The pointer came over it.
        std::function<void()> entered;
        /// Gives the keys to another widget; false where there is none that way.
        std::function<bool(Step)> walk;
        std::function<void()> showGallery;
        /// Shows what to do for links to be opened; empty while they are.
        std::function<std::function<void()>()> linkHelp;
        std::function<void()> undo;
        /// The compositor closed the window, which is hidden now.
        std::function<void()> closed;
    };
    WidgetWindow(Seams seams, const host::PlacedWidget& widget);

    /// Shows itself as it is arranged now, perhaps in another size.
    void arrange(const host::ArrangedWidget& arranged);
    /// What the extension calls it, and which families it offers.
    void describe(const widgetkit::WidgetDescription& description);
    /// Takes the keys, on its first place to tap or on its last.
    void takeKeysAt(bool isFirst);
    /// Looks again whether it is seen, and tells the host when that has changed.
    void tellSeen();
    WidgetView& view() { return view_; }
    const std::string& kind() const { return widget_.kind; }
    /// What people call it.
    std::string name() const { return description_ ? description_->displayName : widget_.kind; }
    const host::Slot& slot() const { return slot_; }

  protected:
    bool on_key_press_event(GdkEventKey* event) override;
    bool on_button_press_event(GdkEventButton* event) override;
    bool on_delete_event(GdkEventAny* event) override;
    bool on_enter_notify_event(GdkEventCrossing* event) override;
    bool on_visibility_notify_event(GdkEventVisibility* event) override;
    void on_size_allocate(Gtk::Allocation& allocation) override;

  private:
    void makeMenu();
    void showMenu();
    void update(double dx, double dy);
    void end(double dx, double dy);
    /// Where it would land if it were let go.
    host::Slot target(double dx, double dy) const;
    /// Within the widget, and at its end to another one.
    bool walk(Gtk::DirectionType direction, Step beyond);
    void clicked();
    void cancelDrag();
    Landing landing(host::Slot slot) const;
    void step(int columns, int rows);
    void moveTo(host::Slot slot);
    void sendTo(std::size_t monitor, host::Cell cell);
    bool isLocked();
    void stepFamily(int direction);
    void setFamily(widgetkit::WidgetFamily family);
    void reloadWidget();
    void removeWidget();
    void tellMoved(const Result<void>& done);
    void addMonitors();

    Seams seams_;
    host::PlacedWidget widget_;
    host::Slot slot_;
    /// Where its monitor was when it was placed.
    std::optional<MonitorArea> area_;
    std::optional<widgetkit::WidgetDescription> description_;
    WidgetView view_;
    bool isCovered_ = false, isSeen_ = true;
    std::pair<int, int> shaped_;  // the size to which it is cut
    Glib::RefPtr<Gtk::GestureDrag> drag_;
    std::unique_ptr<DragIcon> dragIcon_;
    Gtk::Menu menu_;
    std::shared_ptr<int> life_ = std::make_shared<int>();
};

}  // namespace zelto::desktop
