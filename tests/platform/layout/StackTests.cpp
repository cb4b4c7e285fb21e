#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "platform/layout/Stack.hpp"
#include "tests/platform/layout/FixedChildren.hpp"

namespace zelto::layout {
namespace {

using test::FixedChild;
using test::FixedChildren;
using Kind = StackChild::Kind;

constexpr double infinity = std::numeric_limits<double>::infinity();
const StackChild other{}, spacer{.kind = Kind::spacer}, wrapping{.kind = Kind::text};
const StackChild cut{.kind = Kind::text, .isLimited = true}, shrinking{.kind = Kind::text, .shrinks = true};
const FixedChild flexible{{0, 0}, {infinity, 10}}, text{{0, 10}, {60, 10}};

/// The widths that a row gives its children, and the place where each begins: "10@0 20@18".
std::string row(
    const std::vector<StackChild>& kinds, std::vector<FixedChild> sizes, std::optional<double> width,
    std::optional<double> spacing = {}) {
    FixedChildren children(std::move(sizes));
    const StackInput input{ui::VAlign::top, spacing, kinds, {width, 50}};
    const StackLayout layout = layOutStack(input, children);
    const auto origins = stackOrigins(input, layout, {0, 0, layout.size.width, 50}, children);
    std::string out;
    for (std::size_t i = 0; i < origins.size(); ++i)
        out += (i > 0 ? " " : "") + std::to_string(std::lround(layout.sizes[i].width)) + "@" +
               std::to_string(std::lround(origins[i].x));
    return out;
}

TEST(Stack, KeepsADefaultDistanceButNoneBesideSpacers) {
    const FixedChild ten = FixedChild::of(10, 10);
    EXPECT_EQ(row({other, other}, {ten, ten}, 100), "10@0 10@18");
    EXPECT_EQ(row({other, other}, {ten, ten}, 100, 3), "10@0 10@13");
    EXPECT_EQ(row({other, spacer, other}, {ten, {{8, 0}, {infinity, 0}}, ten}, 100), "10@0 80@10 10@90");
    EXPECT_EQ(row({}, {}, 100), "");
}

TEST(Stack, OffersTheLeastFlexibleFirstAndSharesTheRest) {
    EXPECT_EQ(row({other, other}, {flexible, FixedChild::of(30, 10)}, 100, 0), "70@0 30@70");
    EXPECT_EQ(row({other, other, other}, {flexible, flexible, flexible}, 90, 0), "30@0 30@30 30@60");
    // One that cannot take its share leaves it to the others.
    EXPECT_EQ(row({other, other}, {{{0, 0}, {20, 10}}, flexible}, 100, 0), "20@0 80@20");
    // Without an offer each has its ideal length.
    EXPECT_EQ(row({other, other}, {text, FixedChild::of(30, 10)}, std::nullopt, 0), "60@0 30@60");
}

TEST(Stack, TextsGiveWayInTheirOrder) {
    // Together they want 120 of 80 points.
    EXPECT_EQ(row({wrapping, wrapping}, {text, text}, 80, 0), "40@0 40@40");
    EXPECT_EQ(row({cut, wrapping}, {text, text}, 80, 0), "20@0 60@20");
    EXPECT_EQ(row({cut, cut}, {text, text}, 80, 0), "40@0 40@40");
    EXPECT_EQ(row({shrinking, cut}, {text, text}, 80, 0), "20@0 60@20");
    EXPECT_EQ(row({shrinking, cut, wrapping}, {text, text, text}, 130, 0), "10@0 60@10 60@70");
    // A text that may shrink and be broken into lines makes others be cut too.
    EXPECT_EQ(row({cut, shrinking, other}, {text, text, text}, 130, 0), "60@0 10@60 60@70");
}

TEST(Stack, AColumnKnowsNoTurnsOfTexts) {
    FixedChildren children({{{10, 0}, {10, 60}}, {{10, 0}, {10, 60}}});
    const std::vector kinds{shrinking, wrapping};
    const StackInput input{ui::HAlign::center, 0, kinds, {50, 80}};
    const StackLayout layout = layOutStack(input, children);
    EXPECT_EQ(layout.sizes[0].height, 40);
    EXPECT_EQ(layout.sizes[1].height, 40);
}

TEST(Stack, AlignsAcross) {
    const std::vector<FixedChild> sizes{FixedChild::of(10, 20, 15), FixedChild::of(10, 8, 5)};
    const auto ys = [&](ui::VAlign alignment) {
        FixedChildren children(sizes);
        const std::vector kinds{other, other};
        const StackInput input{alignment, 0, kinds, {100, 50}};
        const StackLayout layout = layOutStack(input, children);
        const auto origins = stackOrigins(input, layout, {0, 0, 20, layout.size.height}, children);
        return std::vector<double>{layout.size.height, origins[0].y, origins[1].y};
    };
    EXPECT_EQ(ys(ui::VAlign::top), (std::vector<double>{20, 0, 0}));
    EXPECT_EQ(ys(ui::VAlign::center), (std::vector<double>{20, 0, 6}));
    EXPECT_EQ(ys(ui::VAlign::bottom), (std::vector<double>{20, 0, 12}));
    EXPECT_EQ(ys(ui::VAlign::firstTextBaseline), (std::vector<double>{20, 0, 10}));
    EXPECT_EQ(aligned(ui::HAlign::leading, 100, 40), 0);
    EXPECT_EQ(aligned(ui::HAlign::center, 100, 40), 30);
    EXPECT_EQ(aligned(ui::HAlign::trailing, 100, 40), 60);
}

}  // namespace
}  // namespace zelto::layout
