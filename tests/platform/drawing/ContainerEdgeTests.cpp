#include <cairo.h>
#include <gtest/gtest.h>

#include "platform/drawing/ContainerEdge.hpp"
#include "platform/drawing/Handles.hpp"

namespace zelto::drawing {
namespace {

constexpr std::uint32_t blue = 0xFF204080;

Picture filled(int width, int height) {
    return {
        width,
        height,
        std::vector<std::uint32_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), blue)};
}
Picture finished(int width, int height, double scale, Corners corners) {
    Picture out = filled(width, height);
    ContainerEdge().paint(out, scale, corners, {0, 0, width, height});
    return out;
}
std::uint32_t at(const Picture& picture, int x, int y) {
    return picture.pixels
        [static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) + static_cast<std::size_t>(x)];
}

TEST(ContainerEdge, IsWhatTheOutlineSays) {
    for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
        const layout::Size size{164, 344};
        const int width = static_cast<int>(size.width * scale),
                  height = static_cast<int>(size.height * scale);
        Picture drawn = filled(width, height);
        const Surface surface(cairo_image_surface_create_for_data(
            reinterpret_cast<unsigned char*>(drawn.pixels.data()),
            CAIRO_FORMAT_ARGB32,
            width,
            height,
            width * 4));
        const Context context(cairo_create(surface.get()));
        cairo_scale(context.get(), scale, scale);
        cairo_set_fill_rule(context.get(), CAIRO_FILL_RULE_EVEN_ODD);
        cairo_rectangle(context.get(), 0, 0, size.width, size.height);
        addContainerOutline(context.get(), size);
        cairo_set_operator(context.get(), CAIRO_OPERATOR_CLEAR);
        cairo_fill(context.get());
        cairo_set_operator(context.get(), CAIRO_OPERATOR_OVER);
        addContainerOutline(context.get(), size);
        addContainerOutline(context.get(), size, 1 / scale);
        cairo_set_source_rgba(context.get(), 1, 1, 1, rimOpacity);
        cairo_fill(context.get());
        cairo_surface_flush(surface.get());

        const Picture own = finished(width, height, scale, Corners::rounded);
        int worst = 0;
        for (std::size_t i = 0; i < own.pixels.size(); ++i)
            for (int shift = 0; shift < 32; shift += 8)
                worst = std::max(
                    worst,
                    std::abs(
                        static_cast<int>(own.pixels[i] >> shift & 0xFF) -
                        static_cast<int>(drawn.pixels[i] >> shift & 0xFF)));
        // Cairo counts coverage in steps of about a fifteenth.
        EXPECT_LE(worst, 20) << scale;
    }
}

TEST(ContainerEdge, IsTheSameOnAllSides) {
    const Picture own = finished(328, 329, 1.9, Corners::rounded);
    for (int y = 0; y < own.height; ++y)
        for (int x = 0; x < own.width; ++x) {
            ASSERT_EQ(at(own, x, y), at(own, own.width - 1 - x, y)) << x << "," << y;
            ASSERT_EQ(at(own, x, y), at(own, x, own.height - 1 - y)) << x << "," << y;
        }
    EXPECT_EQ(at(own, 0, 0), 0U);
    EXPECT_EQ(at(own, 100, 1), blue);
    EXPECT_EQ(at(own, 100, 0), 0xFF34518B);
}

TEST(ContainerEdge, OfWindowsThatCutThemselvesHasNoHoles) {
    EXPECT_EQ(at(finished(164, 164, 1, Corners::outlined), 0, 0), blue);
    EXPECT_EQ(finished(164, 164, 1, Corners::square).pixels, filled(164, 164).pixels);
}

TEST(ContainerEdge, IsPaintedWithinAnAreaOnly) {
    const Picture whole = finished(164, 164, 1, Corners::rounded);
    ContainerEdge edge;
    for (const PixelBounds& area :
         {PixelBounds{0, 0, 20, 20},
          {150, 3, 164, 90},
          {10, 155, 160, 164},
          {0, 80, 5, 81},
          {50, 50, 60, 60}}) {
        Picture part = filled(164, 164);
        edge.paint(part, 1, Corners::rounded, area);
        for (int y = 0; y < 164; ++y)
            for (int x = 0; x < 164; ++x) {
                const bool isWithin = x >= area.left && x < area.right && y >= area.top && y < area.bottom;
                ASSERT_EQ(at(part, x, y), isWithin ? at(whole, x, y) : blue) << x << "," << y;
            }
    }
}

TEST(ContainerEdge, FollowsTheScale) {
    ContainerEdge edge;
    for (const double scale : {2.0, 1.0, 2.0}) {
        const int side = static_cast<int>(164 * scale);
        Picture own = filled(side, side);
        edge.paint(own, scale, Corners::rounded, {0, 0, side, side});
        EXPECT_EQ(own.pixels, finished(side, side, scale, Corners::rounded).pixels) << scale;
    }
}

}  // namespace
}  // namespace zelto::drawing
