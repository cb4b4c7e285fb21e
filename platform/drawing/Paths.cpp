#include "drawing/Paths.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include <cairo.h>

namespace zelto::drawing {
namespace {

constexpr double pi = std::numbers::pi;

/// How much of a corner's quarter turn is spent on easing into it.
constexpr double smoothing = 0.6;

/// A corner between two straight edges, as lengths along the first edge from the corner's begin (0) to the
/// corner point. The second half mirrors the first.
struct Corner {
    double length;      // of edge that the corner takes on each side
    double a, b, c, d;  // the easing curve: a + b + c along the edge, d away from it
    double arc;         // what the arc in the middle spans on each axis
    double radius;

    static Corner of(double radius, double room) {
        const double r = std::min(radius, room);
        const double ease = r <= 0 ? 0 : std::clamp(room / r - 1, 0.0, smoothing);
        const double turn = pi / 2 * (1 - ease);  // of the arc in the middle
        const double arc = std::sin(turn / 2) * r * std::numbers::sqrt2;
        const double alpha = (pi / 2 - turn) / 2;
        const double beta = pi / 4 * ease;
        const double reach = r * std::tan(alpha / 2);
        const double c = reach * std::cos(beta), d = c * std::tan(beta);
        const double length = (1 + ease) * r;
        const double b = (length - arc - c - d) / 3;
        return {length, 2 * b, b, c, d, arc, r};
    }
};

/// Runs round one corner: `along` is the direction of the edge that leads in, `across` that of the edge that
/// leads out.
struct CornerPen {
    cairo_t* context;
    const Corner& corner;
    double x, y;  // where the corner begins
    std::array<double, 2> along, across;

    void run() {
        const Corner& k = corner;
        curve({k.a, 0}, {k.a + k.b, 0}, {k.a + k.b + k.c, k.d});
        if (k.arc > 0) {
            // The arc turns by the angle whose chord spans `arc` on both axes; its control points lie on the
            // tangents.
            const double turn = 2 * std::asin(std::min(k.arc / (k.radius * std::numbers::sqrt2), 1.0));
            const double handle = 4.0 / 3 * std::tan(turn / 4) * k.radius;
            const double begin = pi / 4 - turn / 2, end = pi / 4 + turn / 2;
            curve(
                {handle * std::cos(begin), handle * std::sin(begin)},
                {k.arc - handle * std::cos(end), k.arc - handle * std::sin(end)},
                {k.arc, k.arc});
        }
        curve({k.d, k.c}, {k.d, k.b + k.c}, {k.d, k.a + k.b + k.c});
    }

  private:
    void curve(std::array<double, 2> p, std::array<double, 2> q, std::array<double, 2> end) {
        cairo_curve_to(context, px(p), py(p), px(q), py(q), px(end), py(end));
        const double nextX = px(end), nextY = py(end);
        x = nextX;
        y = nextY;
    }
    double px(std::array<double, 2> p) const { return x + p[0] * along[0] + p[1] * across[0]; }
    double py(std::array<double, 2> p) const { return y + p[0] * along[1] + p[1] * across[1]; }
};

struct AddPath {
    cairo_t* context;
    const layout::Rect& frame;
    double trim;

    void operator()(const ui::Circle&) const {
        const auto center = frame.center();
        const double radius = std::min(frame.width, frame.height) / 2;
        cairo_new_sub_path(context);
        cairo_arc(context, center.x, center.y, radius, 0, 2 * pi * trim);
        if (trim >= 1) cairo_close_path(context);
    }
    void operator()(const ui::Capsule&) const {
        addContinuousRectangle(context, frame, std::min(frame.width, frame.height) / 2);
    }
    void operator()(const ui::RoundedRectangle& rectangle) const {
        addContinuousRectangle(context, frame, rectangle.radius);
    }
    void operator()(const ui::Polyline& line) const {
        const std::size_t count = line.fractions.size();
        if (count < 2) return;
        for (std::size_t i = 0; i < count; ++i) {
            const double x = frame.x + frame.width * static_cast<double>(i) / static_cast<double>(count - 1);
            const double y = frame.y + frame.height * (1 - line.fractions[i]);
            if (i == 0)
                cairo_move_to(context, x, y);
            else
                cairo_line_to(context, x, y);
        }
    }
};

}  // namespace

void addContinuousRectangle(cairo_t* context, const layout::Rect& frame, double radius) {
    const Corner corner = Corner::of(std::max(radius, 0.0), std::min(frame.width, frame.height) / 2);
    const double left = frame.x, right = frame.x + frame.width, top = frame.y,
                 bottom = frame.y + frame.height;
    const double length = corner.length;
    cairo_new_sub_path(context);
    cairo_move_to(context, left + length, top);
    cairo_line_to(context, right - length, top);
    CornerPen{context, corner, right - length, top, {1, 0}, {0, 1}}.run();
    cairo_line_to(context, right, bottom - length);
    CornerPen{context, corner, right, bottom - length, {0, 1}, {-1, 0}}.run();
    cairo_line_to(context, left + length, bottom);
    CornerPen{context, corner, left + length, bottom, {-1, 0}, {0, -1}}.run();
    cairo_line_to(context, left, top + length);
    CornerPen{context, corner, left, top + length, {0, -1}, {1, 0}}.run();
    cairo_close_path(context);
}

void addPath(cairo_t* context, const layout::Rect& frame, const ui::Geometry& geometry, double trim) {
    std::visit(AddPath{context, frame, std::clamp(trim, 0.0, 1.0)}, geometry);
}

}  // namespace zelto::drawing
