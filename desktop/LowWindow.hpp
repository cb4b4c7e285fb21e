#pragma once

#include <gtkmm/window.h>
#include <string>

#include "DisplayBackend.hpp"
#include "runloop/MainLoop.hpp"

namespace zelto::desktop {

/// A window below all others to which the keys can be given.
class LowWindow : public Gtk::Window {
  public:
    /// `name` is for compositors.
    LowWindow(const DisplayBackend& backend, const std::string& name);

    /// Has the keys come to it, and shows where in it they are.
    void takeKeys();
    /// The same for one that is about to lose the keys, since it is shown anew elsewhere.
    void keepKeys();
    /// Leaves them to an ordinary window that opens.
    void letKeysGo();

  protected:
    bool on_focus_in_event(GdkEventFocus* event) override;
    const DisplayBackend& backend() const { return backend_; }

  private:
    const DisplayBackend& backend_;
    runloop::MainSource keysLate_;
};

}  // namespace zelto::desktop
