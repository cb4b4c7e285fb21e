#pragma once

namespace zelto::ui {

/// Points.
struct Size {
    double width = 0, height = 0;
    constexpr bool operator==(const Size&) const = default;
};

}  // namespace zelto::ui
