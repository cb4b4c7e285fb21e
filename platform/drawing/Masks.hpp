#pragma once

#include <functional>
#include <string>
#include <unordered_map>

#include "Handles.hpp"

namespace zelto::drawing {

/// A shape's coverage of whole pixels, to be painted in any colour.
struct Mask {
    Surface surface;   // CAIRO_FORMAT_A8
    int x = 0, y = 0;  // of its top left pixel, from the origin of what it shows
};

/// Part of a circle's stroke, in pixels; angles in radians, clockwise from three o'clock.
struct ArcStroke {
    double centerX, centerY, radius, lineWidth;
    double start, sweep;  // a sweep of 2π or more is the whole circle
};

/// What of a picture there is to be painted, in pixels.
struct PixelBounds {
    int left, top, right, bottom;
};

/// The coverage of a stroked arc with round caps, by each pixel's distance from the stroke: a fraction of
/// what tessellating the stroke costs. Positioned in absolute pixels. No more than what is visible of it;
/// without a surface where nothing is.
Mask arcMask(const ArcStroke& arc, const PixelBounds& visible);

/// Keeps masks of what is expensive to draw and recurs: symbols.
class MaskCache {
  public:
    const Mask& get(const std::string& key, const std::function<Mask()>& make);

  private:
    std::unordered_map<std::string, Mask> masks_;
    std::size_t bytes_ = 0;
};

}  // namespace zelto::drawing
