#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "drawing/PNG.hpp"

namespace zelto::test {

/// A PNG of one colour, in premultiplied ARGB.
inline std::string png(int width, int height, std::uint32_t pixel) {
    const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    return *drawing::encodePNG({width, height, std::vector<std::uint32_t>(count, pixel)});
}

}  // namespace zelto::test
