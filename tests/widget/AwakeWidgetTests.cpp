#include <gtest/gtest.h>

#include "tests/support/Samples.hpp"
#include "widget/Widgets/AwakeWidget.hpp"

namespace zelto::test {

using namespace widget;
namespace {

TEST(AwakeWidget, IsInactiveWithoutAFreshSnapshotThatSaysOtherwise) {
    for (const Look& look :
         {without(), sample([](auto&) {}, 900), sample([](auto& s) { s.awakeActive = false; })}) {
        EXPECT_EQ(
            texts(outlineOf("ZeltoAwake", medium, look)),
            (std::vector<std::string>{
                "Manter acordado", "Desligado", "toque para 1 h", "30 min", "1 h", "2 h", "∞"}));
        EXPECT_TRUE(has(outlineOf("ZeltoAwake", small, look), "Symbol \"moon.zzz.fill\" .font(size=30"));
    }
}

TEST(AwakeWidget, CountsDownOrWaitsToBeSwitchedOff) {
    const std::string counting = outlineOf("ZeltoAwake", medium, sample());
    EXPECT_TRUE(has(counting, "Countdown "));
    EXPECT_EQ(count(counting, ".link("), 5);
    EXPECT_TRUE(
        has(counting,
            ".background(geometry=roundedRectangle(7) style=#FF616640) .link(\"zelto://awake?action=off\")"));
    EXPECT_TRUE(has(counting, "Symbol \"cup.and.saucer.fill\" .font(size=26"));
    const std::string endless = outlineOf("ZeltoAwake", medium, sample([](auto& s) { s.awakeEnd = {}; }));
    EXPECT_TRUE(shows(endless, "até desligar"));
    EXPECT_FALSE(has(endless, "Countdown"));
}

TEST(AwakeWidget, HasNoButtonsAndNoSpacerInTheSmallFamily) {
    const std::string text = outlineOf("ZeltoAwake", small, sample());
    EXPECT_EQ(count(text, ".link("), 0);
    EXPECT_EQ(count(text, "Spacer"), 1);  // the header's
}

}  // namespace
}  // namespace zelto::test
