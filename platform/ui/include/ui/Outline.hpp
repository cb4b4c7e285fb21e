#pragma once

#include <string>

#include "ui/View.hpp"

namespace zelto::ui {

/// A view as indented text, one node a line: its kind, its values, then every modifier in the order in which
/// it applies. Colours as #RRGGBB or #RRGGBBAA, texts in double quotes, numbers with at most six digits.
std::string outline(const View& view);

}  // namespace zelto::ui
