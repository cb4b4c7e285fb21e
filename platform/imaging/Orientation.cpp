#include <libexif/exif-data.h>
#include <string_view>

#include "Formats.hpp"
#include "foundation/Handle.hpp"

namespace zelto::imaging {
namespace {

using namespace std::string_view_literals;
using ExifBlock = Handle<ExifData, exif_data_unref>;

constexpr std::string_view mark = "Exif\0\0"sv;

}  // namespace

int orientationOf(std::span<const std::uint8_t> exif) {
    // The library wants the mark that only some formats have.
    std::vector<std::uint8_t> bytes(exif.begin(), exif.end());
    const std::string_view begin(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (!begin.starts_with(mark)) bytes.insert(bytes.begin(), mark.begin(), mark.end());
    const ExifBlock block(exif_data_new_from_data(bytes.data(), static_cast<unsigned>(bytes.size())));
    if (!block) return 1;
    const ExifEntry* entry = exif_data_get_entry(block.get(), EXIF_TAG_ORIENTATION);
    if (!entry || entry->format != EXIF_FORMAT_SHORT || entry->size < 2) return 1;
    const int value = exif_get_short(entry->data, exif_data_get_byte_order(block.get()));
    return value >= 1 && value <= 8 ? value : 1;
}

ui::node::Image upright(Square square) {
    if (square.orientation == 1) return std::move(square.image);
    // The image is a square. From 5 on rows and columns change places; then some are mirrored.
    const bool isTransposed = square.orientation >= 5;
    const bool mirrorsColumns = square.orientation == 2 || square.orientation == 3 ||
                                square.orientation == 6 || square.orientation == 7;
    const bool mirrorsRows = square.orientation == 3 || square.orientation == 4 || square.orientation == 7 ||
                             square.orientation == 8;
    const auto side = static_cast<std::size_t>(square.image.width);
    ui::node::Image out = square.image;
    for (std::size_t y = 0; y < side; ++y)
        for (std::size_t x = 0; x < side; ++x) {
            std::size_t fromX = mirrorsColumns ? side - 1 - x : x, fromY = mirrorsRows ? side - 1 - y : y;
            if (isTransposed) std::swap(fromX, fromY);
            for (std::size_t channel = 0; channel < 4; ++channel)
                out.pixels.bytes[(y * side + x) * 4 + channel] =
                    square.image.pixels.bytes[(fromY * side + fromX) * 4 + channel];
        }
    return out;
}

}  // namespace zelto::imaging
