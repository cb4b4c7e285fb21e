#include "drawing/Renderer.hpp"

#include <algorithm>
#include <cmath>

#include <cairo-svg.h>

#include "ContainerEdge.hpp"
#include "Painter.hpp"
#include "drawing/Paths.hpp"

namespace zelto::drawing {
namespace {

/// Cairo paints into the picture's own pixels.
Surface surfaceOver(Picture& picture) {
    return Surface(cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(picture.pixels.data()),
        CAIRO_FORMAT_ARGB32,
        picture.width,
        picture.height,
        picture.width * static_cast<int>(sizeof(std::uint32_t))));
}

void resize(Picture& picture, layout::Size size, double scale) {
    picture.width = std::max(1, static_cast<int>(std::lround(size.width * scale)));
    picture.height = std::max(1, static_cast<int>(std::lround(size.height * scale)));
    picture.pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
}

std::uint32_t opaquePixel(const ui::LinearGradient& gradient, double t) {
    const auto channel = [t](double top, double bottom) {
        return static_cast<std::uint32_t>(std::clamp(top + (bottom - top) * t, 0.0, 1.0) * 255 + 0.5);
    };
    return 0xFF000000U | channel(gradient.top.red, gradient.bottom.red) << 16 |
           channel(gradient.top.green, gradient.bottom.green) << 8 |
           channel(gradient.top.blue, gradient.bottom.blue);
}

/// The whole pixels of a picture that a rectangle in points touches.
PixelBounds touched(layout::Rect area, double scale, const Picture& picture) {
    const auto pixel = [scale](double points, int most) {
        return static_cast<int>(std::clamp(points * scale, 0.0, static_cast<double>(most)));
    };
    return {
        pixel(area.x, picture.width),
        pixel(area.y, picture.height),
        pixel(area.x + area.width + 1 / scale, picture.width),
        pixel(area.y + area.height + 1 / scale, picture.height)};
}

/// Rows of one colour each: what a gradient from top to bottom comes to, at the price of filling the pixels.
void fillBackground(
    Picture& picture, const std::optional<ui::LinearGradient>& gradient, const PixelBounds& area) {
    const auto width = static_cast<std::size_t>(picture.width);
    for (int y = area.top; y < area.bottom; ++y)
        std::fill_n(
            picture.pixels.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(y) * width) +
                area.left,
            area.right - area.left,
            gradient ? opaquePixel(*gradient, (y + 0.5) / picture.height) : 0U);
}

Pattern gradientPattern(const ui::LinearGradient& gradient, double height) {
    Pattern pattern(cairo_pattern_create_linear(0, 0, 0, height));
    const auto& [top, bottom] = gradient;
    cairo_pattern_add_color_stop_rgba(pattern.get(), 0, top.red, top.green, top.blue, top.opacity);
    cairo_pattern_add_color_stop_rgba(
        pattern.get(), 1, bottom.red, bottom.green, bottom.blue, bottom.opacity);
    return pattern;
}

/// A light rim, one pixel wide.
void paintRim(cairo_t* context, layout::Size size, double scale) {
    addContainerOutline(context, size);
    addContainerOutline(context, size, 1 / scale);
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_source_rgba(context, 1, 1, 1, rimOpacity);
    cairo_fill(context);
}

void paintBorder(cairo_t* context, const layout::DisplayList& displayList, double scale) {
    addContainerOutline(context, displayList.size);
    addContainerOutline(context, displayList.size, displayList.border / scale);
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_source_rgb(context, 1, 1, 1);
    cairo_fill(context);
}

/// A soft shadow: the widget's outline, widened step by step, each fainter than the one inside.
void paintShadow(cairo_t* context, layout::Size size) {
    constexpr int steps = 14;
    constexpr double reach = 14;  // points
    for (int i = steps; i-- > 0;) {
        const double t = (i + 0.5) / steps, grow = reach * t;
        addContinuousRectangle(
            context,
            {-grow, 4 - grow, size.width + 2 * grow, size.height + 2 * grow},
            containerCornerRadius + grow);
        cairo_set_source_rgba(context, 0, 0, 0, 0.075 * std::exp(-4 * t * t));
        cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING);
        cairo_fill(context);
    }
}

}  // namespace

struct Renderer::State {
    Typesetter typesetter;
    MaskCache masks;
    ContainerEdge edge;

    PaintingTools tools(bool toPixels) { return {typesetter, masks, toPixels}; }
};

Renderer::Renderer() : state_(std::make_unique<State>()) {}
Renderer::~Renderer() = default;

layout::TextMeasuring& Renderer::measuring() {
    return state_->typesetter;
}

std::optional<std::string> Renderer::substituteFont() {
    return Typesetter::substituteFont();
}

Picture Renderer::draw(const layout::DisplayList& displayList, double scale, Corners corners) {
    Picture picture;
    draw(displayList, scale, corners, picture);
    return picture;
}

void Renderer::draw(const layout::DisplayList& displayList, double scale, Corners corners, Picture& picture) {
    resize(picture, displayList.size, scale);
    redraw(displayList, scale, corners, {0, 0, displayList.size.width, displayList.size.height}, picture);
}

void Renderer::redraw(
    const layout::DisplayList& displayList, double scale, Corners corners, layout::Rect within,
    Picture& picture) {
    const PixelBounds area = touched(within, scale, picture);
    fillBackground(picture, displayList.background, area);
    const Surface surface = surfaceOver(picture);
    const Context context(cairo_create(surface.get()));
    cairo_rectangle(context.get(), area.left, area.top, area.right - area.left, area.bottom - area.top);
    cairo_clip(context.get());
    cairo_scale(context.get(), scale, scale);
    {
        const SavedState saved(context.get());
        paint(context.get(), displayList, state_->tools(true));
    }
    if (displayList.border > 0) paintBorder(context.get(), displayList, scale);
    cairo_surface_flush(surface.get());
    state_->edge.paint(picture, scale, corners, area);
}

Picture Renderer::drawSheet(std::span<const SheetItem> items, layout::Size size, double scale) {
    Picture picture;
    resize(picture, size, scale);
    const Surface surface = surfaceOver(picture);
    const Context owner(cairo_create(surface.get()));
    cairo_t* context = owner.get();
    cairo_scale(context, scale, scale);

    const Pattern backdrop(cairo_pattern_create_linear(0, 0, size.width, size.height));
    cairo_pattern_add_color_stop_rgb(backdrop.get(), 0, 0.36, 0.30, 0.55);
    cairo_pattern_add_color_stop_rgb(backdrop.get(), 0.55, 0.19, 0.42, 0.60);
    cairo_pattern_add_color_stop_rgb(backdrop.get(), 1, 0.13, 0.27, 0.35);
    cairo_set_source(context, backdrop.get());
    cairo_paint(context);

    for (const auto& [origin, displayList] : items) {
        const SavedState saved(context);
        cairo_translate(context, origin.x, origin.y);
        paintShadow(context, displayList->size);
        addContainerOutline(context, displayList->size);
        if (displayList->background) {
            const Pattern gradient = gradientPattern(*displayList->background, displayList->size.height);
            cairo_set_source(context, gradient.get());
            cairo_fill_preserve(context);
        }
        cairo_clip(context);
        paint(context, *displayList, state_->tools(true));
        paintRim(context, displayList->size, scale);
    }
    cairo_surface_flush(surface.get());
    return picture;
}

std::optional<std::string> Renderer::svg(const layout::DisplayList& displayList, Corners corners) {
    std::string out;
    const auto append = [](void* closure, const unsigned char* data, unsigned int length) {
        static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
        return CAIRO_STATUS_SUCCESS;
    };
    {
        const Surface surface(cairo_svg_surface_create_for_stream(
            append, &out, displayList.size.width, displayList.size.height));
        cairo_svg_surface_set_document_unit(surface.get(), CAIRO_SVG_UNIT_PX);
        const Context context(cairo_create(surface.get()));
        if (corners != Corners::square) {
            addContainerOutline(context.get(), displayList.size);
            cairo_clip(context.get());
        }
        if (displayList.background) {
            const Pattern gradient = gradientPattern(*displayList.background, displayList.size.height);
            cairo_set_source(context.get(), gradient.get());
            cairo_paint(context.get());
        }
        paint(context.get(), displayList, state_->tools(false));
        cairo_surface_finish(surface.get());
        if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return std::nullopt;
    }
    return out;
}

}  // namespace zelto::drawing
