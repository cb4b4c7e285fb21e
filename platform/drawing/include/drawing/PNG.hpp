#pragma once

#include <optional>
#include <string>

#include "drawing/Picture.hpp"

namespace zelto::drawing {

/// The picture as a PNG file's bytes, without an opacity channel when it is opaque; absent when memory runs
/// out.
std::optional<std::string> encodePNG(const Picture& picture);

}  // namespace zelto::drawing
