#include "DragIcon.hpp"

#include <cmath>

#include "Outline.hpp"
#include "PaintPicture.hpp"

namespace zelto::desktop {

DragIcon::DragIcon(
    const DisplayBackend& backend, widgetkit::WidgetFamily family, const drawing::Picture& picture)
    : Gtk::Window(backend.hasOneSpace() ? Gtk::WINDOW_POPUP : Gtk::WINDOW_TOPLEVEL),
      backend_(backend),
      picture_(picture) {
    backend.prepare(*this, "zelto-ghost", false);
    const ui::Size size = widgetkit::sizeOf(family);
    set_size_request(
        static_cast<int>(std::lround(size.width * backend.zoom())),
        static_cast<int>(std::lround(size.height * backend.zoom())));
    // The pointer goes through it.
    input_shape_combine_region(Cairo::Region::create());
}

void DragIcon::place(host::Slot slot) {
    backend_.place(*this, slot);
    show();
}

void DragIcon::on_size_allocate(Gtk::Allocation& allocation) {
    Gtk::Window::on_size_allocate(allocation);
    if (!backend_.isTranslucent()) shapeToOutline(*this, backend_.zoom());
}

bool DragIcon::on_draw(const Cairo::RefPtr<Cairo::Context>& context) {
    context->set_operator(Cairo::OPERATOR_SOURCE);
    context->set_source_rgba(0, 0, 0, 0);
    context->paint();
    context->set_operator(Cairo::OPERATOR_OVER);
    paintPicture(context, picture_, get_allocated_width(), get_allocated_height(), 0.55);
    return true;
}

}  // namespace zelto::desktop
