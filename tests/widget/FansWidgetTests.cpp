#include <gtest/gtest.h>

#include "tests/support/Samples.hpp"
#include "widget/Widgets/FansWidget.hpp"

namespace zelto::test {

using namespace widget;
namespace {

TEST(FansWidget, PlacesTheSpeedBetweenLowestAndHighest) {
    EXPECT_EQ(FansWidgetView::ringFraction({2400, 1200, 7200, false}), 0.2);
    EXPECT_EQ(FansWidgetView::ringFraction({2400, 1200, 1200, false}), 0);
    EXPECT_EQ(FansWidgetView::ringFraction({2400, 7200, 1200, false}), 0);
    EXPECT_EQ(FansWidgetView::ringFraction({600, 1200, 7200, false}), 0);
    EXPECT_EQ(FansWidgetView::ringFraction({13200, 1200, 7200, false}), 2);
}

TEST(FansWidget, NamesTheMode) {
    EXPECT_EQ(FansWidgetView::modeText("automatic", true), "Manual");
    EXPECT_EQ(FansWidgetView::modeText({}, false), "Automático");
    EXPECT_EQ(FansWidgetView::modeText({}, true), "Manual");
    EXPECT_EQ(FansWidgetView::modeText("temperature", true), "Por temperatura");
    EXPECT_EQ(FansWidgetView::modeText("fixed", false), "Fixo");
    EXPECT_EQ(FansWidgetView::modeText("Fixed", false), "Automático");
}

TEST(FansWidget, WritesWholeSpeedsAndStopsAtImpossibleOnes) {
    EXPECT_EQ(FansWidgetView::speedText(1849.5), "1850");
    EXPECT_EQ(FansWidgetView::speedText(0), "0");
    EXPECT_DEATH(FansWidgetView::speedText(1e19), "");
    EXPECT_DEATH(FansWidgetView::speedText(-1e19), "");
    EXPECT_DEATH(FansWidgetView::speedText(0.0 / 0.0), "");
}

TEST(FansWidget, ChoosesItsBody) {
    EXPECT_TRUE(shows(outlineOf("ZeltoFans", small, sample([](auto&) {}, 899)), "2400"));
    EXPECT_TRUE(
        shows(outlineOf("ZeltoFans", small, sample([](auto&) {}, 900)), "Abra o Zelto para atualizar"));
    EXPECT_TRUE(shows(
        outlineOf("ZeltoFans", small, sample([](auto& s) { s.fans.clear(); })),
        "Este Mac não tem ventoinhas."));
    const Look several = sample([](auto& s) {
        s.fans.push_back({9999, 0, 1, true});
        s.chipTemperature = 51.5;
    });
    EXPECT_EQ(
        texts(outlineOf("ZeltoFans", small, several)),
        (std::vector<std::string>{"Ventoinhas", "2400", "rpm", "Automático", "chip a 52°"}));
    EXPECT_EQ(
        texts(outlineOf("ZeltoFans", small, sample([](auto& s) { s.chipTemperature = {}; }))).size(), 4U);
}

}  // namespace
}  // namespace zelto::test
