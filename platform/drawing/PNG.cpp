#include "drawing/PNG.hpp"

#include <algorithm>
#include <csetjmp>
#include <memory>

#include <png.h>

namespace zelto::drawing {
namespace {

void append(png_structp png, png_bytep data, png_size_t length) {
    static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<const char*>(data), length);
}
void keepWhole(png_structp) {}

void convertRow(const std::uint32_t* from, int width, bool opaque, std::uint8_t* to) {
    for (int x = 0; x < width; ++x) {
        const std::uint32_t pixel = from[x];
        const std::uint32_t alpha = pixel >> 24;
        for (const int shift : {16, 8, 0}) {
            const std::uint32_t channel = pixel >> shift & 0xFF;
            *to++ = static_cast<std::uint8_t>(
                opaque || alpha == 0 ? channel : std::min((channel * 255 + alpha / 2) / alpha, 255U));
        }
        if (!opaque) *to++ = static_cast<std::uint8_t>(alpha);
    }
}

/// libpng leaves by longjmp when something fails, so nothing with a destructor may live in here.
bool write(
    png_structp png, png_infop info, const Picture& picture, bool opaque, std::string& out,
    std::uint8_t* row) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_set_write_fn(png, &out, append, keepWhole);
    png_set_IHDR(
        png,
        info,
        static_cast<png_uint_32>(picture.width),
        static_cast<png_uint_32>(picture.height),
        8,
        opaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGBA,
        PNG_INTERLACE_NONE,
        PNG_COMPRESSION_TYPE_DEFAULT,
        PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(png, 1);
    // Widgets are rows of one colour on a vertical gradient: the difference from the row above is mostly
    // nothing.
    png_set_filter(png, PNG_FILTER_TYPE_DEFAULT, PNG_FILTER_UP);
    png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    png_write_info(png, info);
    for (int y = 0; y < picture.height; ++y) {
        convertRow(
            picture.pixels.data() + static_cast<std::ptrdiff_t>(y) * picture.width,
            picture.width,
            opaque,
            row);
        png_write_row(png, row);
    }
    png_write_end(png, info);
    return true;
}

}  // namespace

std::optional<std::string> encodePNG(const Picture& picture) {
    const bool opaque =
        std::ranges::all_of(picture.pixels, [](std::uint32_t pixel) { return pixel >> 24 == 0xFF; });
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    std::string out;
    const auto row = std::make_unique<std::uint8_t[]>(static_cast<std::size_t>(picture.width) * 4);
    const bool written = info && write(png, info, picture, opaque, out, row.get());
    png_destroy_write_struct(&png, &info);
    if (!written) return std::nullopt;
    return out;
}

}  // namespace zelto::drawing
