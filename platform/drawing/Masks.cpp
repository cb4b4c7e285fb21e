#include "Masks.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace zelto::drawing {
namespace {

/// How many masks are kept, and how many bytes of them, before all are dropped.
constexpr std::size_t mostMasks = 512, mostBytes = std::size_t{8} << 20;

/// The coverage of single pixels, relative to the arc's centre.
class ArcCoverage {
  public:
    explicit ArcCoverage(const ArcStroke& arc)
        : radius_(static_cast<float>(arc.radius)),
          reach_(static_cast<float>(arc.lineWidth / 2) + 0.5F),
          middleX_(static_cast<float>(std::cos(arc.start + arc.sweep / 2))),
          middleY_(static_cast<float>(std::sin(arc.start + arc.sweep / 2))),
          // Nothing lies beyond the ends of a whole circle.
          spread_(arc.sweep >= 2 * std::numbers::pi ? -2.0F : static_cast<float>(std::cos(arc.sweep / 2))),
          startX_(static_cast<float>(std::cos(arc.start) * arc.radius)),
          startY_(static_cast<float>(std::sin(arc.start) * arc.radius)),
          endX_(static_cast<float>(std::cos(arc.start + arc.sweep) * arc.radius)),
          endY_(static_cast<float>(std::sin(arc.start + arc.sweep) * arc.radius)) {}

    /// A run of pixels in one row, the first at (x, y). Written without branches, so that the compiler does
    /// several pixels at a time.
    void run(float x, float y, unsigned char* out, int count) const {
        for (int i = 0; i < count; ++i) {
            const float px = x + static_cast<float>(i);
            const float r = std::sqrt(px * px + y * y);
            // Beyond the arc's ends the nearest points are the ends themselves, which makes their caps round.
            const float onArc = std::fabs(r - radius_);
            const float toEnd = std::sqrt(
                std::min(square(px - startX_) + square(y - startY_), square(px - endX_) + square(y - endY_)));
            const float distance = px * middleX_ + y * middleY_ < r * spread_ ? toEnd : onArc;
            out[i] =
                static_cast<unsigned char>(std::min(std::max(reach_ - distance, 0.0F), 1.0F) * 255.0F + 0.5F);
        }
    }

  private:
    static float square(float v) { return v * v; }

    float radius_, reach_;
    float middleX_, middleY_, spread_;
    float startX_, startY_, endX_, endY_;
};

/// Half the width of a circle's chord at a distance from its centre; 0 outside.
double halfChord(double radius, double distance) {
    return radius > std::fabs(distance) ? std::sqrt(radius * radius - distance * distance) : 0;
}

}  // namespace

Mask arcMask(const ArcStroke& arc, const PixelBounds& visible) {
    // One pixel more than the stroke reaches, for its soft edge.
    const double outer = arc.radius + arc.lineWidth / 2 + 1, inner = arc.radius - arc.lineWidth / 2 - 1;
    Mask mask;
    mask.x = std::max(static_cast<int>(std::floor(arc.centerX - outer)), visible.left);
    mask.y = std::max(static_cast<int>(std::floor(arc.centerY - outer)), visible.top);
    const int width = std::min(static_cast<int>(std::ceil(arc.centerX + outer)), visible.right) - mask.x;
    const int height = std::min(static_cast<int>(std::ceil(arc.centerY + outer)), visible.bottom) - mask.y;
    if (width <= 0 || height <= 0) return mask;
    mask.surface.reset(cairo_image_surface_create(CAIRO_FORMAT_A8, width, height));
    unsigned char* pixels = cairo_image_surface_get_data(mask.surface.get());
    if (!pixels) return mask;
    const int stride = cairo_image_surface_get_stride(mask.surface.get());

    const ArcCoverage coverage(arc);
    const double left = arc.centerX - mask.x, top = arc.centerY - mask.y;
    for (int row = 0; row < height; ++row) {
        const double y = row + 0.5 - top;
        const double reach = halfChord(outer, y), hole = halfChord(inner, y);
        unsigned char* line = pixels + static_cast<std::ptrdiff_t>(row) * stride;
        const auto run = [&](double from, double to) {
            const int begin = std::max(static_cast<int>(std::floor(left + from)), 0);
            const int end = std::min(static_cast<int>(std::ceil(left + to)), width);
            if (begin >= end) return;
            coverage.run(
                static_cast<float>(begin + 0.5 - left), static_cast<float>(y), line + begin, end - begin);
        };
        if (reach <= 0) continue;
        if (hole > 1) {
            run(-reach, -hole);
            run(hole, reach);
        } else {
            run(-reach, reach);
        }
    }
    cairo_surface_mark_dirty(mask.surface.get());
    return mask;
}

const Mask& MaskCache::get(const std::string& key, const std::function<Mask()>& make) {
    if (const auto found = masks_.find(key); found != masks_.end()) return found->second;
    if (masks_.size() >= mostMasks || bytes_ > mostBytes) {
        masks_.clear();
        bytes_ = 0;
    }
    Mask made = make();
    bytes_ += static_cast<std::size_t>(cairo_image_surface_get_stride(made.surface.get())) *
              static_cast<std::size_t>(cairo_image_surface_get_height(made.surface.get()));
    return masks_.emplace(key, std::move(made)).first->second;
}

}  // namespace zelto::drawing
