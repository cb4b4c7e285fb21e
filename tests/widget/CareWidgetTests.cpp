#include <gtest/gtest.h>

#include "tests/support/Samples.hpp"
#include "widget/Common/Palette.hpp"
#include "widget/Widgets/CareWidget.hpp"

namespace zelto::test {

using namespace widget;
namespace {

Look care(std::vector<std::pair<const char*, const char*>> items) {
    return sample([&](auto& s) {
        s.careItems.clear();
        for (const auto& [title, level] : items) s.careItems.push_back({title, level, ""});
    });
}

TEST(CareWidget, AsksForAnAnalysisWithoutFindings) {
    const std::vector<std::string> dated{"Cuidados", "há 1 hora", "Abra o Zelto e toque em Analisar."};
    EXPECT_EQ(texts(outlineOf("ZeltoCare", small, care({}))), dated);
    EXPECT_EQ(texts(outlineOf("ZeltoCare", medium, care({}))), dated);
    EXPECT_EQ(
        texts(outlineOf("ZeltoCare", small, without())),
        (std::vector<std::string>{"Cuidados", "Abra o Zelto e toque em Analisar."}));
}

TEST(CareWidget, CountsPointsOfAttention) {
    EXPECT_EQ(CareWidgetView::verdictText(0), "Tudo certo");
    EXPECT_EQ(CareWidgetView::verdictText(1), "1 ponto de atenção");
    EXPECT_EQ(CareWidgetView::verdictText(3), "3 pontos de atenção");
    const std::string one = outlineOf(
        "ZeltoCare",
        small,
        care({{"a", "ok"}, {"b", "attention"}, {"c", "info"}, {"d", "Attention"}, {"e", ""}}));
    EXPECT_TRUE(shows(one, "1 ponto de atenção"));
    EXPECT_TRUE(
        has(one,
            "Symbol \"exclamationmark.triangle.fill\" .font(size=30 weight=regular design=standard"
            " digits=proportional) .foreground(#FFA640)"));
    const std::string none = outlineOf("ZeltoCare", small, care({{"a", "ok"}, {"b", "info"}}));
    EXPECT_TRUE(shows(none, "Tudo certo"));
    EXPECT_TRUE(has(none, "checkmark.seal.fill"));
}

TEST(CareWidget, DotsAreColouredByExactLevels) {
    EXPECT_EQ(CareWidgetView::levelColor("attention"), Palette::warning);
    EXPECT_EQ(CareWidgetView::levelColor("info"), Palette::blue);
    EXPECT_EQ(CareWidgetView::levelColor("Attention"), Palette::accent);
    EXPECT_EQ(CareWidgetView::levelColor(""), Palette::accent);
}

TEST(CareWidget, PlacesEveryFindingInTwoColumns) {
    const std::string nine = outlineOf(
        "ZeltoCare", medium, care(std::vector<std::pair<const char*, const char*>>(9, {"Igual", "ok"})));
    EXPECT_EQ(count(nine, "Text \"Igual\""), 9);
    EXPECT_TRUE(has(nine, "Grid columns=2 columnSpacing=8 rowSpacing=4 alignment=leading"));
}

TEST(CareWidget, TellsTheAnalysissAgeFromTheRealDate) {
    Look look = care({});
    look.now = wednesday + 86400;
    EXPECT_EQ(texts(outlineOf("ZeltoCare", small, look))[1], "ontem");
}

}  // namespace
}  // namespace zelto::test
