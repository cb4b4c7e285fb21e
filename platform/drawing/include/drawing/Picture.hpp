#pragma once

#include <cstdint>
#include <vector>

namespace zelto::drawing {

/// Pixels of one word each: opacity, red, green, blue from the highest byte down, colours multiplied by the
/// opacity.
struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;

    std::uint32_t at(int x, int y) const {
        return pixels
            [static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
    bool operator==(const Picture&) const = default;
};

}  // namespace zelto::drawing
