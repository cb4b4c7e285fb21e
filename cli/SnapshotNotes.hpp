#pragma once

#include <string>
#include <vector>

#include "shared/WidgetSnapshot.hpp"

namespace zelto::cli {

/// What of a sound snapshot the widgets cut or leave out, one line each with its place.
std::vector<std::string> notesOn(const shared::WidgetSnapshot& snapshot);

}  // namespace zelto::cli
