#include <gtest/gtest.h>

#include "platform/layout/BoxModifier.hpp"
#include "tests/platform/layout/FixedChildren.hpp"

namespace zelto::layout {

namespace {

using test::FixedChild;
using test::FixedChildren;
using namespace ui::modifier;

/// Between 10 and 40 points wide, 20 high, its text 15 from the top.
const FixedChild child{{10, 20}, {40, 20}, 15};

struct Row {
    BoxModifier modifier;
    ProposedSize offered, inside;
    Size answer;
    double baseline;
};

TEST(BoxModifier, OffersAnswersAndHasABaseline) {
    const Padding padding{.top = 1, .leading = 2, .bottom = 3, .trailing = 4};
    const Frame wide{.width = 60, .height = {}}, high{.width = {}, .height = 30};
    const Stretch stretchWidth{.width = true, .height = false}, stretchBoth{.width = true, .height = true};
    const Rotation rotation{90};
    const Background background{ui::Capsule{}, ui::secondary};
    const ClipShape clip{ui::Circle{}};
    const Link link{"zelto://x"};
    const ProposedSize room{50, 50}, none{}, narrow{5, 2};
    for (const auto& [modifier, offered, inside, answer, baseline] : {
             Row{&padding, room, {44, 46}, {46, 24}, 16},
             Row{&padding, none, none, {46, 24}, 16},
             Row{&padding, narrow, {0, 0}, {16, 24}, 16},
             Row{&wide, room, {60, 50}, {60, 20}, 15},
             Row{&high, room, {50, 30}, {40, 30}, 20},
             Row{&stretchWidth, room, room, {50, 20}, 15},
             Row{&stretchBoth, room, room, {50, 50}, 30},
             Row{&stretchBoth, none, none, {40, 20}, 15},
             Row{&stretchWidth, narrow, narrow, {10, 20}, 15},
             Row{&rotation, room, room, {40, 20}, 15},
             Row{&background, room, room, {40, 20}, 15},
             Row{&clip, room, room, {40, 20}, 15},
             Row{&link, room, room, {40, 20}, 15},
         }) {
        FixedChildren children({child});
        const auto which = testing::Message() << modifier.index() << " in " << offered.width.value_or(-1);
        EXPECT_EQ(childProposal(modifier, offered), inside) << which;
        EXPECT_EQ(sizeOf(modifier, offered, children), answer) << which;
        EXPECT_EQ(baselineOf(modifier, offered, children), baseline) << which;
    }
}

TEST(BoxModifier, AnImageThatFillsKeepsItsAspectRatio) {
    const ScaledToFill fill;
    const auto filled = [&](const FixedChild& image, const ProposedSize& room) {
        FixedChildren children({image});
        return sizeOf(&fill, room, children);
    };
    const FixedChild image = FixedChild::of(40, 20);
    EXPECT_EQ(filled(image, {20, 20}), (Size{40, 20}));
    EXPECT_EQ(filled(image, {80, 20}), (Size{80, 40}));
    EXPECT_EQ(filled(image, {20, std::nullopt}), (Size{20, 10}));
    EXPECT_EQ(filled(image, {std::nullopt, 10}), (Size{20, 10}));
    EXPECT_EQ(filled(image, {}), (Size{40, 20}));
    EXPECT_EQ(filled(FixedChild::of(0, 0), {20, 30}), (Size{20, 30}));
}

}  // namespace
}  // namespace zelto::layout
