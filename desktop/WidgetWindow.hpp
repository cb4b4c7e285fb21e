#pragma once

#include <functional>
#include <gtkmm/gesturedrag.h>
#include <gtkmm/menu.h>
#include <gtkmm/window.h>
#include <memory>

#include "desktop/Face.hpp"
#include "desktop/Ghost.hpp"
#include "desktop/Surroundings.hpp"
#include "host/WidgetHost.hpp"

namespace zelto::desktop {

/// A placed widget's window: a tap opens links, a drag moves it on the grid, a menu and keys do the rest.
class WidgetWindow : public Gtk::Window {
  public:
    struct Seams {
        host::WidgetHost& host;
        const Surroundings& surroundings;
        Face::Seams face;
        std::function<void()> showGallery;
        /// Finds every widget its place anew.
        std::function<void()> arrange;
    };
    WidgetWindow(Seams seams, const host::PlacedWidget& widget);

    /// Shows itself as placed, perhaps in another size, where there is a place for it now.
    void stand(const host::PlacedWidget& widget, const Desk& desk, host::Cell cell);
    /// What the extension calls it, and which families it offers.
    void describe(const WidgetDescription& description);
    Face& face() { return face_; }
    const std::string& kind() const { return widget_.kind; }

  protected:
    bool on_key_press_event(GdkEventKey* event) override;
    bool on_button_press_event(GdkEventButton* event) override;
    bool on_delete_event(GdkEventAny* event) override;
    bool on_visibility_notify_event(GdkEventVisibility* event) override;
    void on_size_allocate(Gtk::Allocation& allocation) override;

  private:
    void makeMenu();
    void showMenu();
    void update(double dx, double dy);
    void end(double dx, double dy);
    /// Where it would come to stand if it were let go.
    std::pair<Desk, host::Cell> target(double dx, double dy) const;
    void step(std::int64_t columns, std::int64_t rows);
    void moveTo(const Desk& desk, host::Cell cell);
    void stepFamily(int direction);
    void setFamily(WidgetFamily family);
    void refuse(const std::string& why);

    Seams seams_;
    host::PlacedWidget widget_;
    Desk desk_{};
    host::Cell cell_;
    std::optional<WidgetDescription> description_;
    Face face_;
    Glib::RefPtr<Gtk::GestureDrag> drag_;
    std::unique_ptr<Ghost> ghost_;
    Gtk::Menu menu_;
    std::shared_ptr<int> life_ = std::make_shared<int>();
};

}  // namespace zelto::desktop
