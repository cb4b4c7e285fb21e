#pragma once

#include <cairomm/context.h>

#include "drawing/Picture.hpp"

namespace zelto::desktop {

/// Paints a picture over a window's part, `width` by `height` units large.
inline void paintPicture(
    const Cairo::RefPtr<Cairo::Context>& context, drawing::Picture& picture, double width, double height,
    double opacity = 1) {
    if (picture.width == 0) return;
    const auto surface = Cairo::ImageSurface::create(
        reinterpret_cast<unsigned char*>(picture.pixels.data()),
        Cairo::FORMAT_ARGB32,
        picture.width,
        picture.height,
        picture.width * 4);
    // By the surface's own scale, so that whole scales are copied pixel by pixel.
    cairo_surface_set_device_scale(surface->cobj(), picture.width / width, picture.height / height);
    context->set_source(surface, 0, 0);
    context->paint_with_alpha(opacity);
    // The surface borrows the pixels for now only.
    context->set_source_rgba(0, 0, 0, 0);
}

}  // namespace zelto::desktop
