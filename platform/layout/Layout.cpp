#include "layout/Layout.hpp"

#include <algorithm>

#include "Box.hpp"

namespace zelto::layout {
namespace {

constexpr ui::Color black{0, 0, 0};
constexpr int highContrastBorder = 2;  // pixels

}  // namespace

DisplayList layOut(const ui::View& view, const LayoutOptions& options, TextMeasuring& measuring) {
    DisplayList displayList;
    displayList.size = options.size;
    BoxTree tree(view, options.now, options.contrast, measuring, displayList);
    const Size content{
        std::max(options.size.width - 2 * options.margin, 0.0),
        std::max(options.size.height - 2 * options.margin, 0.0)};
    const ProposedSize proposal{content.width, content.height};
    const Size size = tree.measure(tree.root(), proposal);
    // What is too high begins at the top: its header stays, its last rows are what is cut off.
    tree.place(
        tree.root(),
        {options.margin + (content.width - size.width) / 2,
         options.margin + std::max((content.height - size.height) / 2, 0.0)},
        proposal);
    if (options.contrast == Contrast::high) {
        displayList.background = ui::LinearGradient{black, black};
        displayList.border = highContrastBorder;
    }
    return displayList;
}

}  // namespace zelto::layout
