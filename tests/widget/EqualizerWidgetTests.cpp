#include <gtest/gtest.h>

#include "tests/support/Samples.hpp"
#include "widget/Widgets/EqualizerWidget.hpp"

namespace zelto::test {

using namespace widget;
namespace {

TEST(EqualizerWidget, IsOffWithoutAFreshSnapshotThatSaysOtherwise) {
    for (const Look& look :
         {without(), sample([](auto&) {}, 900), sample([](auto& s) { s.eqEnabled = false; })}) {
        const std::string text = outlineOf("ZeltoEqualizer", small, look);
        EXPECT_EQ(texts(text), (std::vector<std::string>{"Equalizador", "Desligado", "toque para ligar"}));
        EXPECT_EQ(count(text, "fill(#FFFFFF1F)"), 10);
    }
}

TEST(EqualizerWidget, ShowsPresetAndOutput) {
    const std::string text = outlineOf("ZeltoEqualizer", small, sample());
    EXPECT_EQ(
        texts(text), (std::vector<std::string>{"Equalizador", "Ligado", "Graves+", "MacBook Pro Speakers"}));
    EXPECT_EQ(count(text, "fill(#FFA640)"), 10);
    EXPECT_EQ(texts(outlineOf("ZeltoEqualizer", small, sample([](auto& s) { s.eqOutput = {}; }))).size(), 3U);
    EXPECT_EQ(texts(outlineOf("ZeltoEqualizer", small, sample([](auto& s) { s.eqPreset = ""; })))[2], "");
}

TEST(EqualizerWidget, HasBarsOfFixedHeights) {
    const std::string text = outlineOf("ZeltoEqualizer", small, sample());
    std::string heights;
    for (auto at = text.find("frame(height="); at != std::string::npos;
         at = text.find("frame(height=", at + 1))
        heights += text.substr(at + 13, text.find(')', at) - at - 13) + " ";
    EXPECT_EQ(heights, "34 17 23.8 20.4 13.6 10.2 15.3 18.7 23.8 27.2 22.1 ");
}

TEST(EqualizerWidget, CountsItsHeights) {
    EXPECT_EQ(count(outlineOf("ZeltoEqualizer", small, sample()), "capsule"), 10);
}

}  // namespace
}  // namespace zelto::test
