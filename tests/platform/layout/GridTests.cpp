#include <gtest/gtest.h>

#include "platform/layout/Grid.hpp"
#include "tests/platform/layout/FixedChildren.hpp"
#include "ui/View.hpp"

namespace zelto::layout {
namespace {

using test::FixedChild;
using test::FixedChildren;

const ui::node::Grid two{
    .columns = 2, .columnSpacing = 6, .rowSpacing = 4, .alignment = ui::HAlign::leading, .children = {}};
const std::vector<FixedChild> three{FixedChild::of(10, 20), FixedChild::of(30, 10), FixedChild::of(20, 5)};

TEST(Grid, SharesTheWidthAndStacksRows) {
    FixedChildren children(three);
    const GridInput input{two, 3, 100};
    const GridLayout layout = layOutGrid(input, children);
    EXPECT_EQ(layout.columnWidth, 47);
    EXPECT_EQ(layout.rowHeights, (std::vector<double>{20, 5}));
    EXPECT_EQ(layout.size, (Size{100, 29}));
    // In the middle of their rows.
    EXPECT_EQ(
        gridOrigins(input, layout, {10, 10, 100, 29}, children),
        (std::vector<Point>{{10, 10}, {63, 15}, {10, 34}}));
}

TEST(Grid, IsAsWideAsItsWidestChildWhenNothingIsOffered) {
    FixedChildren children(three);
    EXPECT_EQ(layOutGrid({two, 3, std::nullopt}, children).size, (Size{66, 29}));
}

TEST(Grid, AlignsInItsColumns) {
    for (const auto& [alignment, x] :
         {std::pair{ui::HAlign::leading, 0.0}, {ui::HAlign::center, 18.5}, {ui::HAlign::trailing, 37.0}}) {
        FixedChildren children(three);
        ui::node::Grid grid = two;
        grid.alignment = alignment;
        const GridInput input{grid, 1, 100};
        EXPECT_EQ(gridOrigins(input, layOutGrid(input, children), {}, children)[0].x, x);
    }
}

TEST(Grid, WithoutChildrenOrColumnsIsEmpty) {
    FixedChildren children({});
    EXPECT_EQ(layOutGrid({two, 0, 100}, children).size, (Size{100, 0}));
    ui::node::Grid none = two;
    none.columns = 0;
    EXPECT_EQ(layOutGrid({none, 0, 100}, children).size, (Size{100, 0}));
}

}  // namespace
}  // namespace zelto::layout
