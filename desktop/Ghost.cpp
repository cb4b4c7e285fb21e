#include "desktop/Ghost.hpp"

#include <cmath>

namespace zelto::desktop {

Ghost::Ghost(const Surroundings& surroundings, WidgetFamily family, const drawing::Picture& picture)
    : Gtk::Window(surroundings.placing() == Placing::hints ? Gtk::WINDOW_POPUP : Gtk::WINDOW_TOPLEVEL),
      surroundings_(surroundings),
      family_(family),
      picture_(picture) {
    surroundings.prepare(*this, "zelto-ghost", false);
    const WidgetSize size = sizeOf(family);
    set_size_request(
        static_cast<int>(std::lround(size.width * surroundings.zoom())),
        static_cast<int>(std::lround(size.height * surroundings.zoom())));
    // The pointer goes through it.
    input_shape_combine_region(Cairo::Region::create());
}

void Ghost::place(const Desk& desk, host::Cell cell) {
    surroundings_.place(*this, desk, surroundings_.position(desk, cell, family_));
    show();
}

bool Ghost::on_draw(const Cairo::RefPtr<Cairo::Context>& context) {
    context->set_operator(Cairo::OPERATOR_SOURCE);
    context->set_source_rgba(0, 0, 0, 0);
    context->paint();
    if (picture_.width == 0) return true;
    const auto surface = Cairo::ImageSurface::create(
        reinterpret_cast<unsigned char*>(picture_.pixels.data()),
        Cairo::FORMAT_ARGB32,
        picture_.width,
        picture_.height,
        picture_.width * 4);
    context->set_operator(Cairo::OPERATOR_OVER);
    context->scale(
        static_cast<double>(get_allocated_width()) / picture_.width,
        static_cast<double>(get_allocated_height()) / picture_.height);
    context->set_source(surface, 0, 0);
    context->paint_with_alpha(0.55);
    context->set_source_rgba(0, 0, 0, 0);
    return true;
}

}  // namespace zelto::desktop
