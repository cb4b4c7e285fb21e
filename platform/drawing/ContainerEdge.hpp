#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "Masks.hpp"
#include "drawing/Picture.hpp"
#include "drawing/Renderer.hpp"

namespace zelto::drawing {

/// Adds a widget's outline, of `size` points, `inset` points within its edge.
void addContainerOutline(cairo_t* context, layout::Size size, double inset = 0);

/// The light of the rim, one pixel wide, which keeps a widget's edge in sight on black: white.
inline constexpr double rimOpacity = 0.09;

/// The rim of widgets, and what their rounded corners leave of the pixels below. Kept from one picture to the
/// next, since all widgets of one scale have the same corners.
class ContainerEdge {
  public:
    /// Finishes what has been painted of a picture.
    void paint(Picture& picture, double scale, Corners corners, const PixelBounds& area);

  private:
    /// Of a pixel: how much of it lies within the outline, and how much on the rim.
    struct Coverage {
        std::uint8_t inside, rim;
    };
    /// The one at the top left, row by row; the others are its mirror images.
    struct Corner {
        int side = 0;  // pixels
        std::vector<Coverage> pixels = {};
        std::vector<int> reach = {};  // how many pixels of each row are touched at all
    };
    static Corner make(double scale);

    std::map<double, Corner> corners_;  // by scale
};

}  // namespace zelto::drawing
