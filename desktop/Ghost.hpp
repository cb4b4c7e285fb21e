#pragma once

#include <gtkmm/window.h>

#include "Surroundings.hpp"
#include "drawing/Picture.hpp"

namespace zelto::desktop {

/// A translucent picture of a dragged widget on the place that it would take.
class Ghost : public Gtk::Window {
  public:
    Ghost(const Surroundings& surroundings, WidgetFamily family, const drawing::Picture& picture);

    void place(host::Slot slot);

  protected:
    void on_size_allocate(Gtk::Allocation& allocation) override;
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& context) override;

  private:
    const Surroundings& surroundings_;
    drawing::Picture picture_;
};

}  // namespace zelto::desktop
