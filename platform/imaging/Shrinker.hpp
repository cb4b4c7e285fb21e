#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "ui/Nodes.hpp"

namespace zelto::imaging {

/// Takes an image row by row, from the top, and keeps of it the square in its middle, made smaller by a whole
/// factor to hardly more than twice the side that is wanted: it never holds the image.
class Shrinker {
  public:
    /// Of an image of `width` by `height` pixels, for a square of at most `side`.
    Shrinker(int width, int height, int side);

    /// The next row: `width` pixels of red, green, blue and opacity.
    void take(const std::uint8_t* row);
    /// The square; absent when rows are missing.
    std::optional<ui::node::Image> finish() const;

    /// By how much an image of that size may be made smaller beforehand, without a loss.
    static int spareFactor(int width, int height, int side);

  private:
    int side_;
    int factor_, size_;        // of a kept pixel, in pixels; of the kept square, in kept pixels
    int left_, top_, height_;  // where the square begins; of the image
    int y_ = 0;
    std::vector<std::uint32_t> sums_;  // of the row of kept pixels that is being filled
    std::vector<std::uint8_t> kept_;
};

}  // namespace zelto::imaging
