#include "Covering.hpp"

#include <algorithm>

#include <cairomm/region.h>

namespace zelto::desktop {

bool isHidden(const ScreenArea& area, unsigned long id, const std::vector<OtherWindow>& stacked) {
    const auto left = Cairo::Region::create(Cairo::RectangleInt{area.x, area.y, area.width, area.height});
    const auto own = std::ranges::find(stacked, id, &OtherWindow::id);
    for (auto above = own == stacked.end() ? stacked.begin() : own + 1; above != stacked.end(); ++above)
        for (const ScreenArea& opaque : above->opaque)
            left->subtract(Cairo::RectangleInt{opaque.x, opaque.y, opaque.width, opaque.height});
    return left->empty();
}

}  // namespace zelto::desktop
