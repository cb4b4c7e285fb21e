#pragma once

#include <vector>

namespace zelto::desktop {

/// Whole pixels of a screen.
struct ScreenArea {
    int x = 0, y = 0, width = 0, height = 0;
    bool operator==(const ScreenArea&) const = default;
};

/// A window of somebody else's, as far as it hides what is below it.
struct OtherWindow {
    unsigned long id;
    /// Where nothing shines through; none while it is not on the screen.
    std::vector<ScreenArea> opaque;
};

/// Whether nothing is left to be seen of an area behind the windows that stand above `id`, in an order from
/// the lowest to the highest. One that is not among them stands below all.
bool isHidden(const ScreenArea& area, unsigned long id, const std::vector<OtherWindow>& stacked);

}  // namespace zelto::desktop
