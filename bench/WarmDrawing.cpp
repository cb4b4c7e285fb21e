// Draws all looks of the sample over and over, at one and two pixels a point: warm-drawing ROUNDS. Made to be
// run under an instruction counter, with two numbers of rounds: the difference is what a round costs
// (bench/warm).

#include <cstdlib>
#include <string>
#include <vector>

#include "drawing/Renderer.hpp"
#include "layout/Layout.hpp"
#include "widget/Widgets/ZeltoWidgetBundle.hpp"

int main(int argc, char** argv) {
    using namespace zelto;
    using namespace zelto::shared;
    using namespace zelto::texts;
    using namespace zelto::widget;
    using namespace zelto::widgetkit;
    constexpr Date date{794941500};  // 2026-03-11T14:05:00-03:00
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 1;
    const ProviderSources sources{
        .now = [] { return date; },
        .live = placeholderLiveData,
        .snapshot = [&] { return WidgetSnapshot::sample(date); }};
    const Formatting formatting({"pt_BR", "America/Sao_Paulo"});
    drawing::Renderer renderer;
    std::vector<layout::DisplayList> looks;
    for (auto& widget : ZeltoWidgetBundle{sources}.body())
        for (const WidgetFamily family : widget.info().families) {
            const ui::Size size = sizeOf(family);
            const auto entry = widget.snapshot({family, false}, {family, formatting, [] { return date; }});
            looks.push_back(layout::layOut(entry.view, {.size = size, .now = date}, renderer.measuring()));
        }
    std::vector<drawing::Picture> pictures(2 * looks.size());
    std::uint32_t sum = 0;
    for (int round = 0; round <= rounds; ++round) {
        auto picture = pictures.begin();
        for (const layout::DisplayList& look : looks)
            for (const double scale : {1.0, 2.0}) {
                renderer.draw(look, scale, drawing::Corners::rounded, *picture);
                sum += (picture++)->pixels[100];
            }
    }
    return sum == 0 ? 1 : 0;
}
