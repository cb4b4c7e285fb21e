#include <csetjmp>
#include <memory>

// The library's header needs the types of this one.
#include <cstdio>
#include <jerror.h>
#include <jpeglib.h>

#include "Formats.hpp"
#include "Shrinker.hpp"

namespace zelto::imaging {
namespace {

struct Faults {
    jpeg_error_mgr manager;  // first: the library has a pointer to it
    std::jmp_buf jump;
};

[[noreturn]] void onFault(j_common_ptr decoder) {
    std::longjmp(reinterpret_cast<Faults*>(decoder->err)->jump, 1);
}
/// A file that breaks off is only warned of, and filled with grey.
void onMessage(j_common_ptr decoder, int level) {
    if (level < 0 && decoder->err->msg_code == JWRN_JPEG_EOF) onFault(decoder);
}

/// Owns the library's decoder.
struct Reader {
    Reader() {
        decoder.err = jpeg_std_error(&faults.manager);
        faults.manager.error_exit = onFault;
        faults.manager.emit_message = onMessage;
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() { jpeg_destroy_decompress(&decoder); }

    Faults faults{};
    jpeg_decompress_struct decoder{};
};

// The functions that may be left by a jump own nothing.

bool readHeader(Reader& reader, std::FILE* file) {
    if (setjmp(reader.faults.jump) != 0) return false;
    jpeg_create_decompress(&reader.decoder);
    jpeg_stdio_src(&reader.decoder, file);
    jpeg_save_markers(&reader.decoder, JPEG_APP0 + 1, 0xFFFF);
    return jpeg_read_header(&reader.decoder, TRUE) == JPEG_HEADER_OK;
}

bool start(Reader& reader, unsigned reduction) {
    if (setjmp(reader.faults.jump) != 0) return false;
    jpeg_decompress_struct& decoder = reader.decoder;
    decoder.scale_num = 1;
    decoder.scale_denom = reduction;
    decoder.dct_method = JDCT_IFAST;
    decoder.do_fancy_upsampling = FALSE;
    const bool isForPrinting = decoder.jpeg_color_space == JCS_CMYK || decoder.jpeg_color_space == JCS_YCCK;
    decoder.out_color_space = isForPrinting ? JCS_CMYK : JCS_EXT_RGBA;
    return jpeg_start_decompress(&decoder) == TRUE;
}

/// Inks as light: the programs that write such files store them inverted.
void mixInks(std::uint8_t* row, unsigned width) {
    for (std::uint8_t* pixel = row; pixel < row + std::size_t{width} * 4; pixel += 4) {
        for (int ink = 0; ink < 3; ++ink) pixel[ink] = static_cast<std::uint8_t>(pixel[ink] * pixel[3] / 255);
        pixel[3] = 255;
    }
}

bool readRows(Reader& reader, std::uint8_t* row, Shrinker& shrinker) {
    if (setjmp(reader.faults.jump) != 0) return false;
    jpeg_decompress_struct& decoder = reader.decoder;
    while (decoder.output_scanline < decoder.output_height) {
        jpeg_read_scanlines(&decoder, &row, 1);
        if (decoder.out_color_space == JCS_CMYK) mixInks(row, decoder.output_width);
        shrinker.take(row);
    }
    return true;
}

int orientationOf(const jpeg_decompress_struct& decoder) {
    for (auto* marker = decoder.marker_list; marker; marker = marker->next)
        if (marker->marker == JPEG_APP0 + 1)
            if (const int found = imaging::orientationOf({marker->data, marker->data_length}); found != 1)
                return found;
    return 1;
}

}  // namespace

std::optional<Square> decodeJPEG(std::FILE* file, int side) {
    Reader reader;
    jpeg_decompress_struct& decoder = reader.decoder;
    if (!readHeader(reader, file)) return std::nullopt;
    const int spare = Shrinker::spareFactor(
        static_cast<int>(decoder.image_width), static_cast<int>(decoder.image_height), side);
    unsigned reduction = 8;
    while (reduction > static_cast<unsigned>(spare)) reduction /= 2;
    const int orientation = orientationOf(decoder);
    if (!start(reader, reduction)) return std::nullopt;
    Shrinker shrinker(static_cast<int>(decoder.output_width), static_cast<int>(decoder.output_height), side);
    std::vector<std::uint8_t> row(std::size_t{decoder.output_width} * 4);
    auto image = readRows(reader, row.data(), shrinker) ? shrinker.finish() : std::nullopt;
    if (!image) return std::nullopt;
    return Square{*std::move(image), orientation};
}

}  // namespace zelto::imaging
