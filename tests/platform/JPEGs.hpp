#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <jpeglib.h>
#include <string>
#include <vector>

namespace zelto::test {

struct JPEG {
    std::uint32_t width, height;
    bool isProgressive = false;
    std::string exif = {};
};

/// A JPEG of rows of red, green and blue bytes, which are asked for by their numbers.
inline std::string encoded(
    const JPEG& picture, const std::function<std::vector<std::uint8_t>(std::uint32_t y)>& row) {
    jpeg_compress_struct encoder{};
    jpeg_error_mgr errors{};
    encoder.err = jpeg_std_error(&errors);
    jpeg_create_compress(&encoder);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&encoder, &bytes, &size);
    encoder.image_width = picture.width;
    encoder.image_height = picture.height;
    encoder.input_components = 3;
    encoder.in_color_space = JCS_RGB;
    jpeg_set_defaults(&encoder);
    if (picture.isProgressive) jpeg_simple_progression(&encoder);
    jpeg_start_compress(&encoder, TRUE);
    if (!picture.exif.empty())
        jpeg_write_marker(
            &encoder,
            JPEG_APP0 + 1,
            reinterpret_cast<const JOCTET*>(picture.exif.data()),
            static_cast<unsigned>(picture.exif.size()));
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        auto samples = row(y);
        JSAMPROW scanline = samples.data();
        jpeg_write_scanlines(&encoder, &scanline, 1);
    }
    jpeg_finish_compress(&encoder);
    jpeg_destroy_compress(&encoder);
    std::string out(reinterpret_cast<const char*>(bytes), size);
    std::free(bytes);
    return out;
}

}  // namespace zelto::test
