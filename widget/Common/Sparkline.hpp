#pragma once

#include <vector>

#include "ui/View.hpp"

namespace zelto::widget {

/// A line chart that fills the room that it is offered.
struct Sparkline {
    std::vector<double> values;  // fractions 0 to 1, oldest first
    ui::Color color;

    ui::View body() const;
};

}  // namespace zelto::widget
