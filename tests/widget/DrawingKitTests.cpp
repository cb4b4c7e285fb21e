#include <limits>

#include <gtest/gtest.h>

#include "ui/Outline.hpp"
#include "widget/Common/Palette.hpp"
#include "widget/Common/Ring.hpp"
#include "widget/Common/Sparkline.hpp"
#include "widget/Common/WidgetHeader.hpp"

namespace zelto::test {

using namespace widget;
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(Palette, HasItsColours) {
    using ui::Color;
    EXPECT_EQ(Palette::accent, (Color{0.25, 0.85, 0.70}));
    EXPECT_EQ(Palette::blue, (Color{0.45, 0.65, 1.0}));
    EXPECT_EQ(Palette::memory, (Color{0.85, 0.60, 1.0}));
    EXPECT_EQ(Palette::warning, (Color{1.0, 0.65, 0.25}));
    EXPECT_EQ(Palette::danger, (Color{1.0, 0.38, 0.40}));
    EXPECT_EQ(Palette::track, (Color{1, 1, 1, 0.12}));
    EXPECT_EQ(Palette::card, (Color{1, 1, 1, 0.07}));
    EXPECT_EQ(Palette::background, (ui::LinearGradient{{0.12, 0.15, 0.18}, {0.04, 0.05, 0.07}}));
    EXPECT_EQ(ui::hexText(Palette::accent), "#40D9B2");
    EXPECT_EQ(ui::hexText(Palette::blue), "#73A6FF");
    EXPECT_EQ(ui::hexText(Palette::memory), "#D999FF");
    EXPECT_EQ(ui::hexText(Palette::warning), "#FFA640");
    EXPECT_EQ(ui::hexText(Palette::danger), "#FF6166");
    EXPECT_EQ(ui::hexText(Palette::track), "#FFFFFF1F");
    EXPECT_EQ(ui::hexText(Palette::card), "#FFFFFF12");
    EXPECT_EQ(ui::hexText(Palette::background.top), "#1F262E");
    EXPECT_EQ(ui::hexText(Palette::background.bottom), "#0A0D12");
}

TEST(LoadColor, StepsAtSixTenthsAndAtEightyFivePercent) {
    EXPECT_EQ(Palette::loadColor(0.599), Palette::accent);
    EXPECT_EQ(Palette::loadColor(0.6), Palette::warning);
    EXPECT_EQ(Palette::loadColor(0.8499), Palette::warning);
    EXPECT_EQ(Palette::loadColor(0.85), Palette::danger);
}

TEST(ColorFromHex, ReadsSixDigitsAndFallsBackToBlue) {
    const std::vector<std::pair<const char*, const char*>> rows{
        {"#4CAF50", "#4CAF50"}, {"4CAF50", "#4CAF50"},    {"##4CAF50##", "#4CAF50"}, {"", "#4F8DF7"},
        {"#", "#4F8DF7"},       {"12G456", "#4F8DF7"},    {"FF4CAF50", "#4CAF50"},   {"123456789", "#4F8DF7"},
        {"+10", "#000010"},     {"-0", "#000000"},        {"-1", "#4F8DF7"},         {"+", "#4F8DF7"},
        {"-", "#4F8DF7"},       {"FFF", "#000FFF"},       {"4C#F50", "#4F8DF7"},     {"0x10", "#4F8DF7"},
        {"+-1", "#4F8DF7"},     {"000000001", "#000001"}, {" 4CAF50", "#4F8DF7"},    {"4caf50", "#4CAF50"}};
    for (const auto& [text, color] : rows) {
        EXPECT_EQ(ui::hexText(Palette::colorFromHex(text)), color) << text;
        EXPECT_EQ(Palette::colorFromHex(text).opacity, 1);
    }
}

Ring ring(double value) {
    return {
        .value = value,
        .color = Palette::accent,
        .label = {},
        .caption = {},
        .lineWidth = 9,
        .fontSize = 22,
        .centerText = {}};
}
std::string outline(const Ring& r) {
    return ui::outline(r.body());
}
bool shows(const std::string& outline, const std::string& text) {
    return outline.find("Text \"" + text + "\"") != std::string::npos;
}

TEST(Ring, RoundsItsPercentageAndClampsOnlyItsArc) {
    const std::vector<std::tuple<double, const char*, double>> rows{
        {0, "0%", 0.01},
        {0.004, "0%", 0.01},
        {0.005, "1%", 0.01},
        {0.73, "73%", 0.73},
        {1.2, "120%", 1},
        {1.5, "150%", 1},
        {-0.3, "-30%", 0.01},
        {nan, "0%", 0.01}};
    for (const auto& [value, text, arc] : rows) {
        EXPECT_TRUE(shows(outline(ring(value)), text)) << value;
        EXPECT_EQ(ring(value).arcFraction(), arc) << value;
    }
}

TEST(Ring, ShowsTheCentreTextInsteadOfThePercentage) {
    Ring r = ring(0.5);
    r.centerText = "1850";
    EXPECT_TRUE(shows(outline(r), "1850"));
    EXPECT_FALSE(shows(outline(r), "50%"));
}

TEST(Ring, IsACircleAndItsCentreTextWithoutCaptionAndLabel) {
    EXPECT_EQ(
        outline(ring(0.25)),
        "VStack alignment=center spacing=4 .accessibilityLabel(\"25%\")\n"
        "  ZStack\n"
        "    Shape geometry=circle paint=stroke(style=#FFFFFF1F lineWidth=9 cap=butt join=miter "
        "miterLimit=10)\n"
        "    Shape geometry=circle trim=0.25 paint=stroke(style=#40D9B2 lineWidth=9 cap=round join=miter "
        "miterLimit=10)"
        " .rotation(-90)\n"
        "    VStack alignment=center spacing=0 .padding(top=0 leading=9 bottom=0 trailing=9)\n"
        "      Text \"25%\" .font(size=22 weight=bold design=rounded digits=proportional) .lineLimit(1)"
        " .minimumScale(0.5)\n");
}

TEST(Ring, PutsTheCaptionInsideAndTheLabelUnder) {
    Ring r = ring(0.25);
    r.caption = "usado";
    r.label = "Disco";
    const std::string text = outline(r);
    EXPECT_NE(
        text.find("      Text \"usado\" .font(size=8 weight=regular design=standard digits=proportional)"
                  " .foreground(secondary) .lineLimit(1) .minimumScale(0.75)\n"),
        std::string::npos);
    EXPECT_NE(
        text.find("\n  Text \"Disco\" .font(size=10 weight=semibold design=standard digits=proportional)"
                  " .foreground(secondary)\n"),
        std::string::npos);
}

TEST(Sparkline, ClampsItsValuesAndTakesWhatIsNoNumberAsZero) {
    EXPECT_EQ(
        ui::outline(Sparkline{{1.7, -0.2, nan, 0.5}, Palette::accent}.body()),
        "Shape geometry=polyline([1 0 0 0.5])"
        " paint=stroke(style=#40D9B2 lineWidth=1.5 cap=butt join=round miterLimit=10)\n");
}

TEST(WidgetHeader, EndsWithItsSpacerUnlessItHasATrailingText) {
    const WidgetHeader header{.title = "Zelto", .icon = "cpu", .color = Palette::blue};
    EXPECT_EQ(
        ui::outline(header.body()),
        "HStack alignment=center spacing=4\n"
        "  Symbol \"cpu\" .foreground(#73A6FF)\n"
        "  Text \"Zelto\" .font(size=11 weight=bold design=standard digits=proportional) .lineLimit(1)\n"
        "  Spacer\n");
    const WidgetHeader timed{.title = "Zelto", .icon = "cpu", .color = Palette::blue, .trailing = "14:05"};
    EXPECT_TRUE(
        ui::outline(timed.body())
            .ends_with("  Text \"14:05\" .font(size=9 weight=regular design=standard digits=proportional)"
                       " .foreground(secondary) .lineLimit(1) .minimumScale(0.6)\n"));
}

TEST(OpenAppNote, IsOneSecondaryLabel) {
    EXPECT_EQ(
        ui::outline(OpenAppNote{}.body()),
        "HStack alignment=center spacing=5 .font(size=9 weight=regular design=standard digits=proportional)"
        " .foreground(secondary)\n"
        "  Symbol \"exclamationmark.circle\"\n"
        "  Text \"Abra o Zelto para atualizar\"\n");
}

}  // namespace
}  // namespace zelto::test
