#include "Ghost.hpp"

#include <cmath>

#include "Outline.hpp"
#include "PaintPicture.hpp"

namespace zelto::desktop {

Ghost::Ghost(const Surroundings& surroundings, WidgetFamily family, const drawing::Picture& picture)
    : Gtk::Window(surroundings.placing() == Placing::hints ? Gtk::WINDOW_POPUP : Gtk::WINDOW_TOPLEVEL),
      surroundings_(surroundings),
      picture_(picture) {
    surroundings.prepare(*this, "zelto-ghost", false);
    const ui::Size size = sizeOf(family);
    set_size_request(
        static_cast<int>(std::lround(size.width * surroundings.zoom())),
        static_cast<int>(std::lround(size.height * surroundings.zoom())));
    // The pointer goes through it.
    input_shape_combine_region(Cairo::Region::create());
}

void Ghost::place(host::Slot slot) {
    surroundings_.place(*this, slot);
    show();
}

void Ghost::on_size_allocate(Gtk::Allocation& allocation) {
    Gtk::Window::on_size_allocate(allocation);
    if (!surroundings_.isTranslucent()) shapeToOutline(*this, surroundings_.zoom());
}

bool Ghost::on_draw(const Cairo::RefPtr<Cairo::Context>& context) {
    context->set_operator(Cairo::OPERATOR_SOURCE);
    context->set_source_rgba(0, 0, 0, 0);
    context->paint();
    context->set_operator(Cairo::OPERATOR_OVER);
    paintPicture(context, picture_, get_allocated_width(), get_allocated_height(), 0.55);
    return true;
}

}  // namespace zelto::desktop
