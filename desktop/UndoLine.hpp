#pragma once

#include <functional>
#include <gtkmm/button.h>
#include <string>

#include "LowWindow.hpp"

namespace zelto::desktop {

/// A line in the place of a widget that was removed, which brings it back.
class UndoLine : public LowWindow {
  public:
    struct Seams {
        std::function<void()> undo;
        /// Nobody wants it back: its time is over, or somebody said so.
        std::function<void()> over;
        /// Gives the keys to a widget.
        std::function<void()> walk;
    };
    /// Of a widget called `name`, in a slot; it stays for so many seconds.
    UndoLine(
        const DisplayBackend& backend, Seams seams, const std::string& name, host::Slot slot,
        widgetkit::WidgetFamily family, double seconds);

  protected:
    bool on_key_press_event(GdkEventKey* event) override;
    void on_size_allocate(Gtk::Allocation& allocation) override;
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& context) override;

  private:
    Seams seams_;
    Gtk::Button button_;
    runloop::MainSource over_;
};

}  // namespace zelto::desktop
