#pragma once

#include <gtkmm/window.h>

#include "DisplayBackend.hpp"
#include "drawing/Picture.hpp"

namespace zelto::desktop {

/// A translucent picture of a dragged widget on the place that it would take.
class DragIcon : public Gtk::Window {
  public:
    DragIcon(const DisplayBackend& backend, widgetkit::WidgetFamily family, const drawing::Picture& picture);

    void place(host::Slot slot);

  protected:
    void on_size_allocate(Gtk::Allocation& allocation) override;
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& context) override;

  private:
    const DisplayBackend& backend_;
    drawing::Picture picture_;
};

}  // namespace zelto::desktop
