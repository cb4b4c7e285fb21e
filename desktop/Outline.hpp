#pragma once

#include <gtkmm/window.h>

namespace zelto::desktop {

/// Cuts a window to a widget's outline, for where nothing can be translucent. `zoom` is the size of a point.
void shapeToOutline(Gtk::Window& window, double zoom);

}  // namespace zelto::desktop
