#include "ContainerEdge.hpp"

#include <algorithm>
#include <cmath>
#include <functional>

#include "Handles.hpp"
#include "drawing/Paths.hpp"

namespace zelto::drawing {
namespace {

/// How much of an edge a continuous corner takes, in radii.
constexpr double cornerReach = 1.6;
constexpr std::size_t mostScales = 8;

constexpr auto rimLight = static_cast<std::uint32_t>(rimOpacity * 255 + 0.5);

/// A product of two fractions of 255.
constexpr std::uint32_t times(std::uint32_t a, std::uint32_t b) {
    const std::uint32_t product = a * b + 128;
    return (product + (product >> 8)) >> 8;
}

/// Each channel of a pixel times a fraction of 255.
constexpr std::uint32_t scaled(std::uint32_t pixel, std::uint32_t by) {
    constexpr std::uint32_t pairs = 0x00FF00FF;
    const auto product = [by](std::uint32_t pair) {
        const std::uint32_t each = pair * by + 0x00800080;
        return each + ((each >> 8) & pairs);
    };
    return ((product(pixel & pairs) >> 8) & pairs) | (product((pixel >> 8) & pairs) & ~pairs);
}

/// White of some opacity over a pixel.
constexpr std::uint32_t lit(std::uint32_t pixel, std::uint32_t opacity) {
    return opacity * 0x01010101 + scaled(pixel, 255 - opacity);
}

/// What a path covers of `side` by `side` pixels, row by row.
std::vector<std::uint8_t> coverageOf(int side, double scale, const std::function<void(cairo_t*)>& addPath) {
    const Surface surface(cairo_image_surface_create(CAIRO_FORMAT_A8, side, side));
    {
        const Context context(cairo_create(surface.get()));
        cairo_scale(context.get(), scale, scale);
        addPath(context.get());
        cairo_set_fill_rule(context.get(), CAIRO_FILL_RULE_EVEN_ODD);
        cairo_fill(context.get());
    }
    cairo_surface_flush(surface.get());
    std::vector<std::uint8_t> out;
    const unsigned char* data = cairo_image_surface_get_data(surface.get());
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface.get());
    for (int y = 0; data && y < side; ++y) out.insert(out.end(), data + y * stride, data + y * stride + side);
    out.resize(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    return out;
}

}  // namespace

void addContainerOutline(cairo_t* context, layout::Size size, double inset) {
    addContinuousRectangle(
        context,
        {inset, inset, size.width - 2 * inset, size.height - 2 * inset},
        containerCornerRadius - inset);
}

ContainerEdge::Corner ContainerEdge::make(double scale) {
    Corner out{.side = static_cast<int>(std::ceil(cornerReach * containerCornerRadius * scale))};
    // One whose other corners are far away.
    const layout::Size size{10 * containerCornerRadius, 10 * containerCornerRadius};
    const auto inside =
        coverageOf(out.side, scale, [&](cairo_t* context) { addContainerOutline(context, size); });
    const auto rim = coverageOf(out.side, scale, [&](cairo_t* context) {
        addContainerOutline(context, size);
        addContainerOutline(context, size, 1 / scale);
    });
    const auto side = static_cast<std::size_t>(out.side);
    out.reach.resize(side);
    for (std::size_t i = 0; i < inside.size(); ++i) {
        out.pixels.push_back({inside[i], rim[i]});
        if (inside[i] != 255 || rim[i] != 0) out.reach[i / side] = static_cast<int>(i % side) + 1;
    }
    return out;
}

void ContainerEdge::paint(Picture& picture, double scale, Corners corners, const PixelBounds& area) {
    if (corners == Corners::square) return;
    auto found = corners_.find(scale);
    if (found == corners_.end()) {
        // As many as there are monitors, commonly one.
        if (corners_.size() == mostScales) corners_.clear();
        found = corners_.emplace(scale, make(scale)).first;
    }
    const Corner& corner = found->second;
    const auto finish = [isRounded = corners == Corners::rounded](std::uint32_t& pixel, Coverage coverage) {
        if (isRounded && coverage.inside != 255) pixel = scaled(pixel, coverage.inside);
        if (coverage.rim != 0) pixel = lit(pixel, times(rimLight, coverage.rim));
    };
    const auto pixel = [&](int x, int y) -> std::uint32_t& {
        return picture.pixels
            [static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
             static_cast<std::size_t>(x)];
    };
    const int across = std::min(corner.side, picture.width / 2),
              down = std::min(corner.side, picture.height / 2);
    for (int y = 0; y < down; ++y) {
        const int reach = std::min(across, corner.reach[static_cast<std::size_t>(y)]);
        for (const int row : {y, picture.height - 1 - y}) {
            if (row < area.top || row >= area.bottom) continue;
            const Coverage* coverage = corner.pixels.data() + static_cast<std::ptrdiff_t>(y) *
                                                                  static_cast<std::ptrdiff_t>(corner.side);
            for (int x = std::max(0, area.left); x < std::min(reach, area.right); ++x)
                finish(pixel(x, row), coverage[x]);
            for (int x = std::max(0, picture.width - area.right);
                 x < std::min(reach, picture.width - area.left);
                 ++x)
                finish(pixel(picture.width - 1 - x, row), coverage[x]);
        }
    }
    const Coverage straight{255, 255};
    for (const int row : {0, picture.height - 1})
        for (int x = std::max(across, area.left);
             row >= area.top && row < area.bottom && x < std::min(picture.width - across, area.right);
             ++x)
            finish(pixel(x, row), straight);
    for (const int column : {0, picture.width - 1})
        for (int y = std::max(down, area.top);
             column >= area.left && column < area.right && y < std::min(picture.height - down, area.bottom);
             ++y)
            finish(pixel(column, y), straight);
}

}  // namespace zelto::drawing
