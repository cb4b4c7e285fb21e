#pragma once

#include <string>

#include "platform/ui/View.hpp"

namespace zelto::ui {

/// A view as indented text, one node a line: its kind, its values, then every modifier in the order in which
/// it applies. Colours as #RRGGBB or #RRGGBBAA, texts in double quotes, numbers with at most six digits.
std::string outline(const View& view);

/// "#40D9B2", or "#FFFFFF1F" when it is not opaque. A component halfway between two steps takes the lower
/// one.
std::string hexText(const Color& color);

}  // namespace zelto::ui
