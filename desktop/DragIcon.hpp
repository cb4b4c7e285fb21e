#pragma once

#include <gtkmm/window.h>

#include "DisplayBackend.hpp"
#include "drawing/Picture.hpp"

namespace zelto::desktop {

/// What comes of dropping a widget on a place.
enum class Landing { free, swap, refused };

/// A translucent picture of a dragged widget on the place that it would take, framed where another one stands
/// there: in blue if they would change places, in red if it cannot have it.
class DragIcon : public Gtk::Window {
  public:
    DragIcon(const DisplayBackend& backend, widgetkit::WidgetFamily family, const drawing::Picture& picture);

    void place(host::Slot slot, Landing landing);

  protected:
    void on_size_allocate(Gtk::Allocation& allocation) override;
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& context) override;

  private:
    const DisplayBackend& backend_;
    drawing::Picture picture_;
    Landing landing_ = Landing::free;
};

}  // namespace zelto::desktop
