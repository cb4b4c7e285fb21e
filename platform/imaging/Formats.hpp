#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <vector>

#include "ui/Nodes.hpp"

namespace zelto::imaging {

/// A square of an image, not turned yet, and what the file says of its orientation.
struct Square {
    ui::node::Image image;
    int orientation = 1;  // as in EXIF: 1 is upright
};

// Each format's decoder. Absent for a file that is not sound.

std::optional<Square> decodePNG(std::FILE* file, int side);
std::optional<Square> decodeJPEG(std::FILE* file, int side);
std::optional<Square> decodeWebP(std::span<const std::uint8_t> bytes, int side);
/// By the toolkit's loader of a format: "gif" or "bmp".
std::optional<Square> decodeByLoader(const char* format, int file, int side);

/// The orientation in EXIF data, with or without its "Exif" mark; 1 without one.
int orientationOf(std::span<const std::uint8_t> exif);
/// Turned upright.
ui::node::Image upright(Square square);

}  // namespace zelto::imaging
