#include <csetjmp>
#include <cstdlib>

#include <png.h>

#include "Formats.hpp"
#include "Shrinker.hpp"
#include "foundation/Handle.hpp"

namespace zelto::imaging {
namespace {

[[noreturn]] void onFault(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}

/// Owns what the library needs to read; its faults jump to where `setjmp` was called with its buffer.
struct Reader {
    Reader() {
        png = png_create_read_struct(
            PNG_LIBPNG_VER_STRING, nullptr, onFault, [](png_structp, png_const_charp) {});
        if (png) info = png_create_info_struct(png);
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }

    png_structp png = nullptr;
    png_infop info = nullptr;
};

// The functions that may be left by a jump own nothing.

bool readHeader(const Reader& reader, std::FILE* file) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    png_init_io(reader.png, file);
    png_read_info(reader.png, reader.info);
    png_set_expand(reader.png);
    png_set_scale_16(reader.png);
    png_set_gray_to_rgb(reader.png);
    png_set_add_alpha(reader.png, 0xFF, PNG_FILLER_AFTER);
    return true;
}

/// Row by row, as they come.
bool readRows(const Reader& reader, std::uint8_t* row, int height, Shrinker& shrinker) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    png_read_update_info(reader.png, reader.info);
    for (int y = 0; y < height; ++y) {
        png_read_row(reader.png, row, nullptr);
        shrinker.take(row);
    }
    png_read_end(reader.png, reader.info);
    return true;
}

/// All at once: every pass of an interlaced image goes over all rows.
bool readInterlaced(
    const Reader& reader, std::uint8_t* pixels, std::size_t stride, int height, Shrinker& shrinker) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    const int passes = png_set_interlace_handling(reader.png);
    png_read_update_info(reader.png, reader.info);
    for (int pass = 0; pass < passes; ++pass)
        for (int y = 0; y < height; ++y)
            png_read_row(reader.png, pixels + static_cast<std::size_t>(y) * stride, nullptr);
    for (int y = 0; y < height; ++y) shrinker.take(pixels + static_cast<std::size_t>(y) * stride);
    png_read_end(reader.png, reader.info);
    return true;
}

int orientationOf(const Reader& reader) {
    png_uint_32 size = 0;
    png_bytep exif = nullptr;
    if (png_get_eXIf_1(reader.png, reader.info, &size, &exif) == 0) return 1;
    return imaging::orientationOf({exif, size});
}

}  // namespace

std::optional<Square> decodePNG(std::FILE* file, int side) {
    const Reader reader;
    if (!reader.info || !readHeader(reader, file)) return std::nullopt;
    const auto width = static_cast<int>(png_get_image_width(reader.png, reader.info));
    const auto height = static_cast<int>(png_get_image_height(reader.png, reader.info));
    const std::size_t stride = static_cast<std::size_t>(width) * 4;
    Shrinker shrinker(width, height, side);
    bool isSound = false;
    if (png_get_interlace_type(reader.png, reader.info) == PNG_INTERLACE_NONE) {
        std::vector<std::uint8_t> row(stride);
        isSound = readRows(reader, row.data(), height, shrinker);
    } else {
        // Without a touch, so that a header alone takes no memory.
        const Handle<void, std::free> pixels(std::malloc(stride * static_cast<std::size_t>(height)));
        if (!pixels) return std::nullopt;
        isSound = readInterlaced(reader, static_cast<std::uint8_t*>(pixels.get()), stride, height, shrinker);
    }
    auto image = isSound ? shrinker.finish() : std::nullopt;
    if (!image) return std::nullopt;
    return Square{*std::move(image), orientationOf(reader)};
}

}  // namespace zelto::imaging
