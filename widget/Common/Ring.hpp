#pragma once

#include <optional>
#include <string>

#include "ui/View.hpp"

namespace zelto::widget {

/// A circular gauge that takes the room that it is offered.
struct Ring {
    double value;  // 0 is empty, 1 is full
    ui::Color color;
    std::optional<std::string> label;       // under the ring
    std::optional<std::string> caption;     // a small second line inside it
    double lineWidth;                       // points
    double fontSize;                        // points, of the centre text
    std::optional<std::string> centerText;  // instead of the percentage
    bool captionIsUnit = false;             // "2400 rpm", which is read in this order

    /// The one ring of a small widget.
    static Ring single(double value, ui::Color color, std::optional<std::string> caption = {});
    /// One of several rings in a medium widget's row.
    static Ring inRow(
        double value, ui::Color color, std::string label, std::optional<std::string> caption = {});

    ui::View body() const;

    /// The part of the circle that is filled: never less than a stub, never more than all.
    double arcFraction() const;
    /// What the middle shows.
    std::string shownText() const;
    /// What is read aloud: what it is of, how much, and what else it says.
    std::string readText() const;
};

}  // namespace zelto::widget
