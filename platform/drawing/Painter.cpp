#include "Painter.hpp"

#include <cmath>
#include <initializer_list>
#include <numbers>
#include <string_view>

#include "Symbols.hpp"
#include "TypesetText.hpp"
#include "drawing/Paths.hpp"

namespace zelto::drawing {
namespace {

/// Around what a mask shows, for soft edges and outlines that are fitted to pixels, in pixels.
constexpr int maskPadding = 3;
/// Coordinates beyond this come only from a hostile reply, and are more than Cairo's fixed-point numbers
/// hold.
constexpr double farthest = 1e5;
/// The largest filled shape that is kept as a mask, and the largest reach of an arc from its centre, in
/// pixels.
constexpr double mostFilledPixels = 300'000, farthestKept = 256;

void setSource(cairo_t* context, const ui::Color& color) {
    cairo_set_source_rgba(context, color.red, color.green, color.blue, color.opacity);
}

bool isPaintable(const layout::Rect& r) {
    return std::fabs(r.x) < farthest && std::fabs(r.y) < farthest && r.width > 0 && r.height > 0 &&
           r.width < farthest && r.height < farthest;
}

/// How user space lies on the device, when it is only shifted, turned and scaled evenly.
struct Similarity {
    double scale, angle;
    bool upright;  // not turned

    static Similarity of(cairo_t* context) {
        cairo_matrix_t m;
        cairo_get_matrix(context, &m);
        double deviceX = 1, deviceY = 1;
        cairo_surface_get_device_scale(cairo_get_target(context), &deviceX, &deviceY);
        return {std::hypot(m.xx, m.yx) * deviceX, std::atan2(m.yx, m.xx), m.yx == 0 && m.xx > 0};
    }
};

void drawSymbol(cairo_t* context, const Symbol& symbol) {
    for (const SymbolPath& path : symbol.paths) {
        for (std::size_t i = 0; i < path.data.size();) {
            const double* at = path.data.data() + i + 1;
            switch (static_cast<int>(path.data[i])) {
                case 0:
                    cairo_move_to(context, at[0], at[1]);
                    i += 3;
                    break;
                case 1:
                    cairo_line_to(context, at[0], at[1]);
                    i += 3;
                    break;
                case 2:
                    cairo_curve_to(context, at[0], at[1], at[2], at[3], at[4], at[5]);
                    i += 7;
                    break;
                default:
                    cairo_close_path(context);
                    i += 1;
                    break;
            }
        }
        cairo_set_fill_rule(context, path.evenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
        if (path.filled) cairo_fill_preserve(context);
        if (path.strokeWidth > 0) {
            cairo_set_line_width(context, path.strokeWidth);
            cairo_set_line_cap(context, path.roundCap ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
            cairo_set_line_join(context, path.roundJoin ? CAIRO_LINE_JOIN_ROUND : CAIRO_LINE_JOIN_MITER);
            cairo_stroke_preserve(context);
        }
        cairo_new_path(context);
    }
}

/// A text's outlines from the origin, thickened by the stroke that rounds them if it is to be rounded.
void drawOutlines(cairo_t* context, const TypesetText& text) {
    text.forEachLine([context](PangoLayoutLine* line, double x, double y) {
        cairo_move_to(context, x, y);
        pango_cairo_layout_line_path(context, line);
    });
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING);
    if (text.roundingStroke <= 0) {
        cairo_fill(context);
        return;
    }
    cairo_set_line_width(context, text.roundingStroke);
    cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
    cairo_fill_preserve(context);
    cairo_stroke(context);
}

/// A mask, at `scale`, of a drawing that covers `ink` points around its origin, which lies `shift` pixels to
/// the right of a pixel's edge.
template <class Draw>
Mask drawnMask(const layout::Rect& ink, double scale, double shift, Draw draw) {
    Mask mask;
    mask.x = static_cast<int>(std::floor(ink.x * scale)) - maskPadding;
    mask.y = static_cast<int>(std::floor(ink.y * scale)) - maskPadding;
    mask.surface.reset(cairo_image_surface_create(
        CAIRO_FORMAT_A8,
        static_cast<int>(std::ceil(ink.width * scale)) + 2 * maskPadding + 1,
        static_cast<int>(std::ceil(ink.height * scale)) + 2 * maskPadding + 1));
    const Context context(cairo_create(mask.surface.get()));
    cairo_translate(context.get(), shift - mask.x, -mask.y);
    cairo_scale(context.get(), scale, scale);
    draw(context.get());
    return mask;
}

/// A key for a mask: what is drawn, and its numbers as they lie in memory.
std::string maskKey(char what, std::initializer_list<double> numbers, std::string_view name = {}) {
    std::string key(1, what);
    for (const double number : numbers) key.append(reinterpret_cast<const char*>(&number), sizeof(number));
    return key.append(name);
}

/// Pixels to the right and down.
struct PixelPoint {
    double x, y;
};

class ItemPainter {
  public:
    ItemPainter(cairo_t* context, const PaintingTools& tools) : context_(context), tools_(tools) {}

    void operator()(const layout::PlacedText& text) const {
        if (!isPaintable(text.frame)) return;
        const auto width = text.width ? std::optional(*text.width / text.scale) : std::nullopt;
        const TypesetText& typeset = tools_.typesetter.typeset(text.text, text.font, width, text.lines);
        const SavedState saved(context_);
        setSource(context_, text.color);
        cairo_translate(context_, text.frame.x, text.frame.y);
        cairo_scale(context_, text.scale, text.scale);
        const Similarity space = Similarity::of(context_);
        if (tools_.toPixels && space.upright && !typeset.isColored &&
            isMaskable(typeset.ink.width, typeset.ink.height, space.scale))
            paintTextMask(typeset, space.scale);
        else
            paintOutlines(typeset, space.upright);
    }
    void operator()(const layout::PlacedCountdown& countdown) const { (*this)(countdown.text); }

    void operator()(const layout::PlacedSymbol& placed) const {
        if (!isPaintable(placed.frame)) return;
        const SavedState saved(context_);
        const Similarity space = Similarity::of(context_);
        const Symbol* symbol =
            symbolFor(placed.name, tools_.toPixels ? symbolSide(placed.fontSize) * space.scale : 0);
        if (!symbol) return;
        setSource(context_, placed.color);
        const double side = symbolSide(placed.fontSize), unit = side / 24;
        cairo_translate(context_, placed.frame.x, placed.frame.y + (placed.frame.height - side) / 2);
        const auto draw = [&](cairo_t* target) {
            cairo_scale(target, unit, unit);
            cairo_translate(target, -symbol->left, 0);
            drawSymbol(target, *symbol);
        };
        if (tools_.toPixels && space.upright && isMaskable(placed.frame.width, side, space.scale)) {
            const auto key = maskKey('s', {placed.fontSize, space.scale}, placed.name);
            const Mask& mask = tools_.masks.get(key, [&] {
                return drawnMask({0, 0, placed.frame.width, side}, space.scale, 0, draw);
            });
            paintMask(mask, 0, 0);
            return;
        }
        if (placed.color.opacity == 1) {
            draw(context_);
            return;
        }
        // Its outlines overlap; together they are one shape of one opacity.
        cairo_push_group(context_);
        cairo_set_source_rgb(context_, placed.color.red, placed.color.green, placed.color.blue);
        draw(context_);
        cairo_pop_group_to_source(context_);
        cairo_paint_with_alpha(context_, placed.color.opacity);
    }

    void operator()(const layout::PlacedShape& shape) const {
        if (!isPaintable(shape.frame)) return;
        if (const auto* stroke = std::get_if<ui::Stroke>(&shape.paint)) {
            paintStroke(shape, *stroke);
            return;
        }
        setSource(context_, std::get<ui::Color>(std::get<ui::Fill>(shape.paint).style));
        const layout::Rect frame = onPixels(shape.frame, shape.geometry);
        const Similarity space = Similarity::of(context_);
        if (tools_.toPixels && space.upright && !std::holds_alternative<ui::Polyline>(shape.geometry) &&
            frame.width * space.scale * frame.height * space.scale < mostFilledPixels) {
            paintFilled(frame, shape.geometry, space.scale);
            return;
        }
        addPath(context_, frame, shape.geometry);
        cairo_set_fill_rule(context_, CAIRO_FILL_RULE_WINDING);
        cairo_fill(context_);
    }

    void operator()(const layout::PlacedImage& placed) const {
        if (!isPaintable(placed.frame)) return;
        const auto width = static_cast<int>(placed.image.width),
                   height = static_cast<int>(placed.image.height);
        const Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
        unsigned char* data = cairo_image_surface_get_data(surface.get());
        const int stride = cairo_image_surface_get_stride(surface.get());
        const std::uint8_t* from = placed.image.pixels.bytes.data();
        for (int y = 0; data && y < height; ++y)
            for (int x = 0; x < width; ++x, from += 4) {
                const std::uint32_t opacity = from[3];
                const auto by = [&](std::uint32_t c) { return (c * opacity + 127) / 255; };
                reinterpret_cast<std::uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride)[x] =
                    opacity << 24 | by(from[0]) << 16 | by(from[1]) << 8 | by(from[2]);
            }
        cairo_surface_mark_dirty(surface.get());
        const SavedState saved(context_);
        cairo_translate(context_, placed.frame.x, placed.frame.y);
        cairo_scale(context_, placed.frame.width / width, placed.frame.height / height);
        cairo_set_source_surface(context_, surface.get(), 0, 0);
        cairo_pattern_set_extend(cairo_get_source(context_), CAIRO_EXTEND_PAD);
        cairo_rectangle(context_, 0, 0, width, height);
        cairo_fill(context_);
    }

    void operator()(const layout::BeginClip& clip) const {
        cairo_save(context_);
        addPath(context_, onPixels(clip.frame, clip.geometry), clip.geometry);
        cairo_clip(context_);
    }
    void operator()(const layout::BeginRotation& rotation) const {
        cairo_save(context_);
        cairo_translate(context_, rotation.center.x, rotation.center.y);
        cairo_rotate(context_, rotation.degrees * std::numbers::pi / 180);
        cairo_translate(context_, -rotation.center.x, -rotation.center.y);
    }
    void operator()(const layout::End&) const { cairo_restore(context_); }

  private:
    /// Straight edges fall on the edges of pixels: those above and below where they are nearest, those on the
    /// sides so that shapes of one width keep it.
    layout::Rect onPixels(const layout::Rect& frame, const ui::Geometry& geometry) const {
        const bool isStraight = std::holds_alternative<ui::Capsule>(geometry) ||
                                std::holds_alternative<ui::RoundedRectangle>(geometry);
        if (!tools_.toPixels || !isStraight || !Similarity::of(context_).upright) return frame;
        const double scale = deviceScale();
        double left = frame.x, top = frame.y, right = frame.x + frame.width, bottom = frame.y + frame.height;
        cairo_user_to_device(context_, &left, &top);
        cairo_user_to_device(context_, &right, &bottom);
        const double width = std::max(std::round((right - left) * scale), 1.0);
        left = std::round(left * scale);
        right = (left + width) / scale;
        left /= scale;
        top = std::round(top * scale);
        bottom = std::max(std::round(bottom * scale), top + 1) / scale;
        top /= scale;
        cairo_device_to_user(context_, &left, &top);
        cairo_device_to_user(context_, &right, &bottom);
        return {left, top, right - left, bottom - top};
    }

    double deviceScale() const {
        double x = 1, y = 1;
        cairo_surface_get_device_scale(cairo_get_target(context_), &x, &y);
        return x;
    }
    PixelPoint toPixels(double x, double y) const {
        const double scale = deviceScale();
        cairo_user_to_device(context_, &x, &y);
        return {x * scale, y * scale};
    }
    /// Paints a mask whose origin is at a pixel.
    void paintMaskAt(const Mask& mask, double x, double y) const {
        const SavedState saved(context_);
        const double scale = deviceScale();
        cairo_identity_matrix(context_);
        cairo_scale(context_, 1 / scale, 1 / scale);
        cairo_mask_surface(context_, mask.surface.get(), x + mask.x, y + mask.y);
    }
    /// Paints a mask whose origin is at user coordinates (x, y), on whole pixels.
    void paintMask(const Mask& mask, double x, double y) const {
        const auto [column, row] = toPixels(x, y);
        paintMaskAt(mask, std::round(column), std::round(row));
    }

    /// Cards and bars recur with every picture, where they stood.
    void paintFilled(const layout::Rect& frame, const ui::Geometry& geometry, double scale) const {
        const auto [x, y] = toPixels(frame.x, frame.y);
        const double column = std::floor(x), row = std::floor(y);
        const auto* rectangle = std::get_if<ui::RoundedRectangle>(&geometry);
        const layout::Rect own{(x - column) / scale, (y - row) / scale, frame.width, frame.height};
        const auto key = maskKey(
            'f',
            {static_cast<double>(geometry.index()),
             rectangle ? rectangle->radius : 0,
             own.x,
             own.y,
             own.width,
             own.height,
             scale});
        const Mask& mask = tools_.masks.get(key, [&] {
            Mask made;
            made.surface.reset(cairo_image_surface_create(
                CAIRO_FORMAT_A8,
                static_cast<int>(std::ceil((own.x + own.width) * scale)),
                static_cast<int>(std::ceil((own.y + own.height) * scale))));
            const Context target(cairo_create(made.surface.get()));
            cairo_scale(target.get(), scale, scale);
            addPath(target.get(), own, geometry);
            cairo_fill(target.get());
            return made;
        });
        paintMaskAt(mask, column, row);
    }

    /// What fits a widget is; what a stranger makes larger is drawn without being kept.
    static bool isMaskable(double width, double height, double scale) {
        constexpr double mostPixels = 4e6;
        return (width * scale + 1) * (height * scale + 1) < mostPixels;
    }

    /// Glyphs stand where they belong, to a quarter of a pixel, and the baseline on a pixel's edge, or feet
    /// of letters would be grey.
    void paintTextMask(const TypesetText& typeset, double scale) const {
        const auto [x, y] = toPixels(0, typeset.extent.baseline);
        const double quarters = std::round(x * 4), column = std::floor(quarters / 4);
        const Mask& mask = textMask(typeset, scale, static_cast<int>(quarters - column * 4));
        paintMaskAt(mask, column, std::round(y));
    }

    static const Mask& textMask(const TypesetText& typeset, double scale, int quarter) {
        for (const auto& kept : typeset.masks)
            if (kept.scale == scale && kept.quarter == quarter) return kept.mask;
        Mask mask = drawnMask(
            typeset.ink, scale, quarter / 4.0, [&](cairo_t* target) { drawOutlines(target, typeset); });
        *typeset.maskBytes += static_cast<std::size_t>(cairo_image_surface_get_stride(mask.surface.get())) *
                              static_cast<std::size_t>(cairo_image_surface_get_height(mask.surface.get()));
        typeset.masks.push_back({scale, quarter, std::move(mask)});
        return typeset.masks.back().mask;
    }

    void paintOutlines(const TypesetText& typeset, bool isUpright) const {
        double x = 0, y = typeset.extent.baseline;
        if (tools_.toPixels && isUpright) {
            const double scale = deviceScale();
            cairo_user_to_device(context_, &x, &y);
            y = std::round(y * scale) / scale;
            cairo_device_to_user(context_, &x, &y);
        }
        cairo_translate(context_, 0, y);
        if (typeset.roundingStroke > 0) {
            drawOutlines(context_, typeset);
            return;
        }
        typeset.forEachLine([this](PangoLayoutLine* line, double lineX, double lineY) {
            cairo_move_to(context_, lineX, lineY);
            pango_cairo_show_layout_line(context_, line);
        });
    }

    void paintStroke(const layout::PlacedShape& shape, const ui::Stroke& stroke) const {
        setSource(context_, std::get<ui::Color>(stroke.style));
        const double trim = shape.trim.value_or(1);
        const bool isArc = std::holds_alternative<ui::Circle>(shape.geometry) &&
                           (trim >= 1 || stroke.cap == ui::LineCap::round);
        if (tools_.toPixels && isArc) {
            paintArc(shape.frame, trim, stroke.lineWidth);
            return;
        }
        addPath(context_, shape.frame, shape.geometry, trim);
        cairo_set_line_width(context_, stroke.lineWidth);
        cairo_set_line_cap(
            context_, stroke.cap == ui::LineCap::round ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
        cairo_set_line_join(
            context_, stroke.join == ui::LineJoin::round ? CAIRO_LINE_JOIN_ROUND : CAIRO_LINE_JOIN_MITER);
        cairo_set_miter_limit(context_, stroke.miterLimit);
        cairo_stroke(context_);
    }

    /// What the clips leave, with user space in pixels.
    PixelBounds visiblePixels() const {
        double left = 0, top = 0, right = 0, bottom = 0;
        cairo_clip_extents(context_, &left, &top, &right, &bottom);
        return {
            static_cast<int>(std::floor(left)),
            static_cast<int>(std::floor(top)),
            static_cast<int>(std::ceil(right)),
            static_cast<int>(std::ceil(bottom))};
    }

    void paintArc(const layout::Rect& frame, double trim, double lineWidth) const {
        const Similarity space = Similarity::of(context_);
        const layout::Point center = frame.center();
        const auto [x, y] = toPixels(center.x, center.y);
        const double column = std::floor(x), row = std::floor(y);
        ArcStroke arc{
            .centerX = x - column,
            .centerY = y - row,
            .radius = std::min(frame.width, frame.height) / 2 * space.scale,
            .lineWidth = lineWidth * space.scale,
            .start = space.angle,
            .sweep = 2 * std::numbers::pi * trim};
        const double reach = std::ceil(arc.radius + arc.lineWidth / 2) + 2;
        if (reach <= farthestKept) {
            const auto key =
                maskKey('a', {arc.centerX, arc.centerY, arc.radius, arc.lineWidth, arc.start, arc.sweep});
            const int side = static_cast<int>(reach);
            const Mask& mask = tools_.masks.get(key, [&] {
                return arcMask(arc, PixelBounds{-side, -side, side + 1, side + 1});
            });
            paintMaskAt(mask, column, row);
            return;
        }
        // What is larger than a widget comes from a stranger: no more of it is made than can be seen.
        const SavedState saved(context_);
        cairo_identity_matrix(context_);
        cairo_scale(context_, 1 / deviceScale(), 1 / deviceScale());
        arc.centerX = x;
        arc.centerY = y;
        const Mask mask = arcMask(arc, visiblePixels());
        if (mask.surface) cairo_mask_surface(context_, mask.surface.get(), mask.x, mask.y);
    }

    cairo_t* context_;
    const PaintingTools& tools_;
};

}  // namespace

void paint(cairo_t* context, const layout::DisplayList& displayList, const PaintingTools& tools) {
    const ItemPainter painter(context, tools);
    for (const layout::DisplayItem& item : displayList.items) std::visit(painter, item);
}

}  // namespace zelto::drawing
