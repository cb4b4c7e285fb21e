#include "Outline.hpp"

#include <cairomm/context.h>

#include "drawing/Paths.hpp"
#include "drawing/Renderer.hpp"

namespace zelto::desktop {

void shapeToOutline(Gtk::Window& window, double zoom) {
    const int width = window.get_allocated_width(), height = window.get_allocated_height();
    const auto mask = Cairo::ImageSurface::create(Cairo::FORMAT_A1, width, height);
    const auto context = Cairo::Context::create(mask);
    context->set_antialias(Cairo::ANTIALIAS_NONE);
    drawing::addContinuousRectangle(
        context->cobj(),
        {0, 0, static_cast<double>(width), static_cast<double>(height)},
        drawing::containerCornerRadius * zoom);
    context->fill();
    cairo_region_t* region = gdk_cairo_region_create_from_surface(mask->cobj());
    gtk_widget_shape_combine_region(GTK_WIDGET(window.gobj()), region);
    cairo_region_destroy(region);
}

}  // namespace zelto::desktop
