#pragma once

#include <optional>
#include <string>

#include "ui/Nodes.hpp"

namespace zelto::imaging {

/// The middle of an image file as a square of at most `side` pixels. Absent for whatever is not a sound image
/// in a regular file, and for one so large that decoding it would take more than 48 MB: decoding is bounded
/// in time and memory, whatever the file claims.
std::optional<ui::node::Image> thumbnail(const std::string& path, int side);

}  // namespace zelto::imaging
