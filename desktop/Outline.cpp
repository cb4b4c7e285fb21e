#include "Outline.hpp"

#include <map>
#include <tuple>

#include <cairomm/context.h>

#include "drawing/Paths.hpp"
#include "drawing/Renderer.hpp"
#include "foundation/Handle.hpp"

namespace zelto::desktop {

namespace {

using Region = Handle<cairo_region_t, cairo_region_destroy>;

Region outline(int width, int height, double zoom) {
    const auto mask = Cairo::ImageSurface::create(Cairo::FORMAT_A1, width, height);
    const auto context = Cairo::Context::create(mask);
    context->set_antialias(Cairo::ANTIALIAS_NONE);
    drawing::addContinuousRectangle(
        context->cobj(),
        {0, 0, static_cast<double>(width), static_cast<double>(height)},
        drawing::containerCornerRadius * zoom);
    context->fill();
    return Region(gdk_cairo_region_create_from_surface(mask->cobj()));
}

}  // namespace

void shapeToOutline(Gtk::Window& window, double zoom) {
    // Widgets have few sizes, and making a region costs as much as a picture.
    static std::map<std::tuple<int, int, double>, Region> regions;
    const int width = window.get_allocated_width(), height = window.get_allocated_height();
    Region& region = regions[{width, height, zoom}];
    if (!region) region = outline(width, height, zoom);
    gtk_widget_shape_combine_region(GTK_WIDGET(window.gobj()), region.get());
}

}  // namespace zelto::desktop
