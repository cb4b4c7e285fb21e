#pragma once

#include <gtkmm/checkbutton.h>
#include <gtkmm/comboboxtext.h>
#include <gtkmm/grid.h>
#include <gtkmm/label.h>
#include <gtkmm/spinbutton.h>

#include "host/WidgetHost.hpp"

namespace zelto::desktop {

/// The page of what holds for all widgets together, and what to do for links to be opened.
class SettingsPage : public Gtk::Grid {
  public:
    explicit SettingsPage(host::WidgetHost& host);

    void present(const host::DesktopSettings& settings);

  private:
    void line(int row, const char* text, Gtk::Widget& control);
    void changed();

    host::WidgetHost& host_;
    Gtk::CheckButton locked_;
    Gtk::ComboBoxText scale_, refresh_;
    Gtk::SpinButton margin_;
    Gtk::Label linksTitle_, linksHelp_, linksCommand_;
    bool isShowing_ = false;
};

}  // namespace zelto::desktop
