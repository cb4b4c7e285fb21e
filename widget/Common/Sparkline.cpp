#include "Common/Sparkline.hpp"

#include <algorithm>

#include "ui/Building.hpp"

namespace zelto::widget {

using namespace ui;

View Sparkline::body() const {
    Polyline line;
    line.fractions.reserve(values.size());
    // Written so that a value that is not a number becomes 0.
    for (const double value : values) line.fractions.push_back(value > 0 ? std::min(value, 1.0) : 0);
    return Stroked(
        std::move(line), {.style = color, .lineWidth = 1.5, .cap = LineCap::butt, .join = LineJoin::round});
}

}  // namespace zelto::widget
