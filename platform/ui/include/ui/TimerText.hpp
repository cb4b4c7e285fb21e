#pragma once

#include <string>

#include "foundation/Date.hpp"

namespace zelto::ui {

/// The time between `now` and `end` in the timer style: "45:00", "1:05:09". Whole seconds left, rounded up
/// while it counts down; after the end it counts up.
std::string timerText(Date end, Date now);

/// The next instant after `now` at which that text changes.
Date nextTimerChange(Date end, Date now);

}  // namespace zelto::ui
