#pragma once

#include <string>
#include <vector>

#include "foundation/Date.hpp"
#include "ui/View.hpp"

namespace zelto::ui {

/// What an assistive technology reads of a view, in order: its texts, countdowns as they stand at `now`, and
/// in place of what carries an accessibility label, that label. A countdown's label stands before the time
/// left, which goes on. Symbols without a label are silent.
std::vector<std::string> readingTexts(const View& view, Date now);

/// Such texts as one, with commas.
std::string joined(const std::vector<std::string>& texts);

}  // namespace zelto::ui
