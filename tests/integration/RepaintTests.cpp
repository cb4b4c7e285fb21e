// A picture whose changes alone are painted is the picture that is painted whole.

#include <gtest/gtest.h>

#include "drawing/Renderer.hpp"
#include "layout/ChangedArea.hpp"
#include "layout/Layout.hpp"
#include "tests/support/Looks.hpp"

namespace zelto::test {
namespace {

using drawing::Corners;
using shared::WidgetSnapshot;

/// Looks of one machine, moment after moment.
std::vector<Look> moments() {
    std::vector<Look> out(6);
    for (auto& look : out) look.snapshot = WidgetSnapshot::sample(wednesday);
    out[1].live.cpu = 0.93;
    out[1].snapshot->cpu = 0.93;
    out[1].snapshot->cpuHistory.back() = 0.93;
    out[2].live.battery = 7;
    out[2].live.charging = true;
    out[2].live.memory = 0.99;
    out[2].snapshot->fans[0].actual = 5999;
    out[2].snapshot->awakeActive = !out[2].snapshot->awakeActive;
    out[3].snapshot->clips.erase(out[3].snapshot->clips.begin());
    out[3].snapshot->events.erase(out[3].snapshot->events.begin());
    out[3].snapshot->careItems[0].level = "alert";
    out[3].snapshot->eqEnabled = !out[3].snapshot->eqEnabled;
    out[4].date = out[4].now = wednesday + 60;
    out[4].live.diskFree = 1'000'000'000;
    out[4].live.disk = 0.997;
    out[5].snapshot.reset();
    return out;
}

TEST(Repaint, OfWhatChangedIsThePictureItself) {
    drawing::Renderer renderer;
    std::size_t parts = 0;
    for (const auto& widget : widget::ZeltoWidgetBundle{{}}.body())
        for (const auto family : widget.info().families)
            for (const double scale : {1.0, 1.25, 2.0}) {
                const ui::Size size = widgetkit::sizeOf(family);
                layout::DisplayList shown{size, {}, {}, {}, {}};
                drawing::Picture picture = renderer.draw(shown, scale, Corners::rounded);
                for (const Look& look : moments()) {
                    auto next = layout::layOut(
                        view(widget.info().kind, family, look),
                        {.size = size, .now = look.now},
                        renderer.measuring());
                    const auto area = layout::changedArea(shown, next);
                    if (area.width > 0) renderer.redraw(next, scale, Corners::rounded, area, picture);
                    if (area.width > 0 && area.width * area.height < size.width * size.height) ++parts;
                    EXPECT_EQ(picture.pixels, renderer.draw(next, scale, Corners::rounded).pixels)
                        << widget.info().kind << " " << records::nameOf(family) << " " << scale;
                    shown = std::move(next);
                }
            }
    EXPECT_GT(parts, 50U);
}

}  // namespace
}  // namespace zelto::test
