#include "DragIcon.hpp"

#include <cmath>
#include <utility>

#include "Outline.hpp"
#include "PaintPicture.hpp"
#include "drawing/Paths.hpp"
#include "drawing/Renderer.hpp"

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

void DragIcon::place(host::Slot slot, Landing landing) {
    backend_.place(*this, slot);
    show();
    if (std::exchange(landing_, landing) != landing) queue_draw();
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
    const double width = get_allocated_width(), height = get_allocated_height();
    paintPicture(context, picture_, width, height, landing_ == Landing::refused ? 0.3 : 0.55);
    if (landing_ == Landing::free) return true;
    const double line = 4 * backend_.zoom();
    context->begin_new_path();
    drawing::addContinuousRectangle(
        context->cobj(),
        {line / 2, line / 2, width - line, height - line},
        drawing::containerCornerRadius * backend_.zoom() - line / 2);
    if (landing_ == Landing::swap)
        context->set_source_rgb(0.31, 0.55, 0.97);
    else
        context->set_source_rgb(0.95, 0.3, 0.3);
    context->set_line_width(line);
    context->stroke();
    return true;
}

}  // namespace zelto::desktop
