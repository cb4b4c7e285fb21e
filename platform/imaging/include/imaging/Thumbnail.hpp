#pragma once

#include <optional>

#include "ui/Nodes.hpp"

namespace zelto::imaging {

/// The middle of an image file, upright, as a square of at most `side` pixels: PNG, JPEG, GIF, BMP or WebP by
/// its first bytes, from where `file` stands at its beginning. Absent for whatever is not a sound image. The
/// bytes may be anybody's: it is to be called in a process that is bounded in time and memory and has nothing
/// to lose.
std::optional<ui::node::Image> decode(int file, int side);

/// Loads what the libraries load when they are first needed, for a process that will not be able to.
void prepare();

}  // namespace zelto::imaging
