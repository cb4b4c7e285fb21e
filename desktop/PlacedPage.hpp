#pragma once

#include <gtkmm/box.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <memory>
#include <string>
#include <vector>

#include "DisplayBackend.hpp"
#include "host/WidgetHost.hpp"

namespace zelto::desktop {

/// The page that lists what stands on the desktop, with what can be done with each: for whom no widget is
/// within reach of the pointer or the keys, and for widgets that have no room.
class PlacedPage : public Gtk::ScrolledWindow {
  public:
    PlacedPage(host::WidgetHost& host, const DisplayBackend& backend);
    ~PlacedPage() override;

    void arranged(const std::vector<host::ArrangedWidget>& widgets);
    /// The extension has told what its widgets are called.
    void nameAnew();

  private:
    class Line;

    host::WidgetHost& host_;
    const DisplayBackend& backend_;
    std::vector<host::ArrangedWidget> arranged_;
    Gtk::Box list_{Gtk::ORIENTATION_VERTICAL, 12};
    Gtk::Label empty_;
    std::vector<std::unique_ptr<Line>> lines_;
};

}  // namespace zelto::desktop
