#pragma once

#include <gtkmm/box.h>
#include <gtkmm/label.h>
#include <gtkmm/stack.h>
#include <gtkmm/stackswitcher.h>
#include <gtkmm/window.h>
#include <string>
#include <vector>

#include "Gallery.hpp"
#include "PlacedPage.hpp"
#include "SettingsPage.hpp"

namespace zelto::desktop {

/// The desktop's ordinary window: what widgets there are, which of them stand on the desktop, and the
/// settings.
class GalleryWindow : public Gtk::Window {
  public:
    struct Seams {
        Gallery::Seams gallery;
        /// Brings back what was removed last.
        std::function<void()> undo;
    };
    explicit GalleryWindow(Seams seams);

    void offer(const std::vector<widgetkit::WidgetDescription>& widgets);
    void arranged(const std::vector<host::ArrangedWidget>& widgets) { placed_.arranged(widgets); }
    void settingsChanged(const host::DesktopSettings& settings) { settings_.present(settings); }
    /// Says something above the pages, until it says something else.
    void say(const std::string& text);
    void showSettings() { pages_.set_visible_child(settings_); }

  protected:
    bool on_key_press_event(GdkEventKey* event) override;

  private:
    std::function<void()> undo_;
    Gtk::Box box_{Gtk::ORIENTATION_VERTICAL, 0};
    Gtk::StackSwitcher switcher_;
    Gtk::Label notice_;
    Gtk::Stack pages_;
    Gallery gallery_;
    PlacedPage placed_;
    SettingsPage settings_;
};

}  // namespace zelto::desktop
