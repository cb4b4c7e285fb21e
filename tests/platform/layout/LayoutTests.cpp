#include <cmath>

#include <gtest/gtest.h>

#include "layout/Layout.hpp"
#include "tests/support/FixedMeasuring.hpp"
#include "ui/Building.hpp"

namespace zelto::test {
namespace {

using namespace ui;
using layout::layOut;

constexpr Color white{1, 1, 1};

/// The frames of a view in a room without margins. A text of size 10 is 5 points a character and 12 points
/// high.
std::string frames(const View& view, double width, double height) {
    FixedMeasuring measuring;
    std::string out =
        layout::dump(layOut(view, {.size = {width, height}, .margin = 0, .now = {0}}, measuring));
    return out.substr(out.find('\n') + 1);
}

View text(const char* characters) {
    return Text(characters).font(10);
}
View box() {
    return Filled(RoundedRectangle{0}, white);
}

TEST(Stack, SharesRoomEqually) {
    EXPECT_EQ(
        frames(HStack({.spacing = 10}, box(), box(), box()), 110, 20),
        "shape 0,0 30×20 rounded 0 fill #FFFFFF\n"
        "shape 40,0 30×20 rounded 0 fill #FFFFFF\n"
        "shape 80,0 30×20 rounded 0 fill #FFFFFF\n");
}

TEST(Stack, ServesTheLeastFlexibleFirst) {
    EXPECT_EQ(
        frames(HStack({.spacing = 0}, box(), box().frame({.width = 50, .height = {}}), box()), 110, 20),
        "shape 0,0 30×20 rounded 0 fill #FFFFFF\n"
        "shape 30,0 50×20 rounded 0 fill #FFFFFF\n"
        "shape 80,0 30×20 rounded 0 fill #FFFFFF\n");
}

TEST(Stack, PutsSpacersLastAndKeepsTheirLeastLength) {
    EXPECT_EQ(
        frames(HStack({.spacing = 4}, text("ab"), Spacer(), text("c")), 100, 12),
        "text 0,0 10×12 \"ab\" 10 #FFFFFF\n"
        "text 95,0 5×12 \"c\" 10 #FFFFFF\n");
    // 8 for the spacer and twice the spacing leave 14 for the texts, the shorter of which is served first.
    EXPECT_EQ(
        frames(HStack({.spacing = 4}, text("abcdef").lineLimit(1), Spacer(), text("c")), 30, 12),
        "text 0,0 5×12 \"abcdef\" 10 within 9 lines 1 #FFFFFF\n"
        "text 25,0 5×12 \"c\" 10 #FFFFFF\n");
}

TEST(Stack, HasDefaultSpacingOnlyBetweenOthersThanSpacers) {
    EXPECT_EQ(
        frames(HStack({}, text("a"), text("b"), Spacer(), text("c")), 60, 12),
        "text 0,0 5×12 \"a\" 10 #FFFFFF\n"
        "text 13,0 5×12 \"b\" 10 #FFFFFF\n"
        "text 55,0 5×12 \"c\" 10 #FFFFFF\n");
}

TEST(Stack, AlignsItsChildren) {
    EXPECT_EQ(
        frames(VStack({.alignment = HAlign::leading, .spacing = 1}, text("abc"), text("d")), 15, 25),
        "text 0,0 15×12 \"abc\" 10 #FFFFFF\ntext 0,13 5×12 \"d\" 10 #FFFFFF\n");
    EXPECT_EQ(
        frames(VStack({.spacing = 1}, text("abc"), text("d")), 15, 25),
        "text 0,0 15×12 \"abc\" 10 #FFFFFF\ntext 5,13 5×12 \"d\" 10 #FFFFFF\n");
    EXPECT_EQ(
        frames(HStack({.alignment = VAlign::bottom, .spacing = 0}, text("a"), Text("b").font(20)), 15, 24),
        "text 0,12 5×12 \"a\" 10 #FFFFFF\ntext 5,0 10×24 \"b\" 20 #FFFFFF\n");
}

TEST(Stack, AlignsFirstBaselinesAndTheFeetOfSymbols) {
    EXPECT_EQ(
        frames(
            HStack(
                {.alignment = VAlign::firstTextBaseline, .spacing = 0},
                text("a"),
                Text("b").font(20),
                Symbol("x").font(5)),
            20,
            24),
        "text 0,10 5×12 \"a\" 10 #FFFFFF\n"
        "text 5,0 10×24 \"b\" 20 #FFFFFF\n"
        "symbol 15,14.84 5×6 x 5 #FFFFFF\n");
}

TEST(Stack, HoldsAtEveryWidth) {
    // Whatever the room, no child goes outside the stack unless even its least size does not fit.
    for (int width = 0; width <= 120; ++width) {
        FixedMeasuring measuring;
        const auto displayList = layOut(
            HStack({.spacing = 2}, text("abcdefgh").lineLimit(1), Spacer(), box(), text("xy").lineLimit(1)),
            {.size = {static_cast<double>(width), 12}, .margin = 0, .now = {0}},
            measuring);
        double end = 0;
        for (const auto& item : displayList.items) {
            const auto* words = std::get_if<layout::PlacedText>(&item);
            const auto* shape = std::get_if<layout::PlacedShape>(&item);
            const auto& frame = words ? words->frame : shape->frame;
            if (width >= 14) {
                EXPECT_GE(frame.x, end - 1e-9) << width;
                EXPECT_LE(frame.x + frame.width, width + 1e-9) << width;
            }
            end = frame.x + frame.width;
        }
    }
}

TEST(Overlay, CentresItsChildrenOnEachOther) {
    EXPECT_EQ(
        frames(ZStack(box(), text("ab")), 30, 20),
        "shape 0,0 30×20 rounded 0 fill #FFFFFF\ntext 10,4 10×12 \"ab\" 10 #FFFFFF\n");
}

TEST(TextFit, WrapsIntoTheRoomThatThereIs) {
    EXPECT_EQ(frames(text("abc def"), 15, 30), "text 0,3 15×24 \"abc def\" 10 within 15 lines 2 #FFFFFF\n");
    EXPECT_EQ(frames(text("abc def"), 20, 30), "text 0,3 20×24 \"abc def\" 10 within 20 lines 2 #FFFFFF\n");
    EXPECT_EQ(frames(text("abc def"), 20, 12), "text 0,0 20×12 \"abc def\" 10 within 20 lines 1 #FFFFFF\n");
}

TEST(TextFit, KeepsTogetherWhatNoLineBreakMayDivide) {
    // However little room there is, also none.
    for (const double width : {0.0, 10.0, 29.0})
        EXPECT_TRUE(
            frames(text("abcdef"), width, 12).find(" 30×12 \"abcdef\" 10 #FFFFFF") != std::string::npos)
            << width;
    // A no-break space is no place to break.
    EXPECT_EQ(frames(text("ab\u202Fcd"), 10, 12), "text -7.5,0 25×12 \"ab\u202Fcd\" 10 #FFFFFF\n");
    // So it is the least flexible of a row, and what may be cut gives way.
    EXPECT_EQ(
        frames(HStack({.spacing = 0}, text("cityname").lineLimit(1), text("2:05\u202FPM")), 55, 12),
        "text 0,0 20×12 \"cityname\" 10 within 20 lines 1 #FFFFFF\n"
        "text 20,0 35×12 \"2:05\u202FPM\" 10 #FFFFFF\n");
    // One that may shrink does so first.
    EXPECT_EQ(
        frames(text("abcdef").minimumScale(0.5), 10, 12),
        "text -2.5,3 15×6 \"abcdef\" 10 scaled 0.5 #FFFFFF\n");
}

TEST(Stack, HasTextsThatMayShrinkGiveWay) {
    const auto header = [](const char* title, const char* trailing) {
        return HStack(
            {.spacing = 4},
            text(title).lineLimit(1),
            Spacer(),
            text(trailing).lineLimit(1).minimumScale(0.6));
    };
    // 16 for the gaps: the title keeps its 40, and 34 are left of the 50 that the other wants.
    EXPECT_EQ(
        frames(header("Cuidados", "há 59 min."), 90, 12),
        "text 0,0 40×12 \"Cuidados\" 10 #FFFFFF\n"
        "text 56,1.92 34×8.16 \"há 59 min.\" 10 scaled 0.68 #FFFFFF\n");
    // A title alone is cut where the room ends.
    EXPECT_EQ(
        frames(HStack({.spacing = 4}, text("Arquivos da família").lineLimit(1), Spacer()), 62, 12),
        "text 0,0 50×12 \"Arquivos da família\" 10 within 50 lines 1 #FFFFFF\n");
}

TEST(Widget, ThatIsTooHighBeginsAtItsTopMargin) {
    FixedMeasuring measuring;
    Views rows;
    for (int i = 0; i < 20; ++i) rows.push_back(text("x"));
    const auto displayList = layOut(
        stack(VStackOptions{.spacing = 4}, std::move(rows)), {.size = {164, 164}, .now = {0}}, measuring);
    EXPECT_EQ(std::get<layout::PlacedText>(displayList.items.front()).frame.y, 16);
}

TEST(TextFit, ShrinksBeforeItIsCut) {
    const auto shrinking = [] { return text("abcdef").lineLimit(1).minimumScale(0.5); };
    EXPECT_EQ(frames(shrinking(), 30, 12), "text 0,0 30×12 \"abcdef\" 10 #FFFFFF\n");
    EXPECT_EQ(frames(shrinking(), 24, 12), "text 0,1.2 24×9.6 \"abcdef\" 10 scaled 0.8 #FFFFFF\n");
    EXPECT_EQ(
        frames(shrinking(), 10, 12), "text 0,3 10×6 \"abcdef\" 10 scaled 0.5 within 10 lines 1 #FFFFFF\n");
}

TEST(TextFit, KeepsTheFirstLineOfATextThatMayHaveOne) {
    EXPECT_EQ(frames(text("ab\ncd").lineLimit(1), 50, 12), "text 17.5,0 15×12 \"ab…\" 10 #FFFFFF\n");
    // No blank stands before an ellipsis.
    EXPECT_EQ(frames(text("ab \t\ncd").lineLimit(1), 50, 12), "text 17.5,0 15×12 \"ab…\" 10 #FFFFFF\n");
}

TEST(Frame, CentresItsContentAndLetsItOverflow) {
    EXPECT_EQ(
        frames(text("abcd").frame({.width = 10, .height = 20}), 40, 20),
        "text 10,4 20×12 \"abcd\" 10 #FFFFFF\n");
    EXPECT_EQ(
        frames(text("ab").stretched({.width = true, .height = false}).background(Capsule{}, white), 40, 12),
        "shape 0,0 40×12 capsule fill #FFFFFF\ntext 15,0 10×12 \"ab\" 10 #FFFFFF\n");
    EXPECT_EQ(
        frames(box().frame({.width = 50, .height = 30}).frame({.width = 10, .height = 10}), 10, 10),
        "shape -20,-10 50×30 rounded 0 fill #FFFFFF\n");
}

TEST(Padding, TakesRoomOffAndAddsIt) {
    EXPECT_EQ(
        frames(
            text("ab").padding(Edges::horizontal, 5).padding(Edges::vertical, 2).background(Capsule{}, white),
            20,
            16),
        "shape 0,0 20×16 capsule fill #FFFFFF\ntext 5,2 10×12 \"ab\" 10 #FFFFFF\n");
}

TEST(Image, FillsItsFrameAndIsClippedToIt) {
    View image{.node = node::Image{20, 10, Bytes{std::vector<std::uint8_t>(800)}}, .modifiers = {}};
    EXPECT_EQ(
        frames(
            std::move(image).scaledToFill().frame({.width = 22, .height = 22}).clipShape(RoundedRectangle{4}),
            22,
            22),
        "clip 0,0 22×22 rounded 4\nimage -11,0 44×22\nend\n");
}

TEST(Grid, GivesColumnsEqualWidthsAndRowsTheirTallest) {
    EXPECT_EQ(
        frames(
            Grid(
                {.columns = 2, .rowSpacing = 4, .alignment = HAlign::leading},
                text("a"),
                Text("b").font(20),
                text("c")),
            58,
            40),
        "text 0,6 5×12 \"a\" 10 #FFFFFF\n"
        "text 33,0 10×24 \"b\" 20 #FFFFFF\n"
        "text 0,28 5×12 \"c\" 10 #FFFFFF\n");
}

TEST(Style, SecondaryIsTheInheritedForegroundAtReducedEmphasis) {
    EXPECT_EQ(
        frames(VStack({}, text("a").foreground(secondary)).foreground(Color{1, 0, 0}), 5, 12),
        "text 0,0 5×12 \"a\" 10 #FF00008C\n");
}

TEST(Modifiers, TheInnermostFontWins) {
    EXPECT_EQ(frames(Text("a").font(10).font(30), 5, 12), "text 0,0 5×12 \"a\" 10 #FFFFFF\n");
}

TEST(Links, HaveTheFramesOfTheirViewsInTheOrderInWhichTheyAreDrawn) {
    FixedMeasuring measuring;
    const auto displayList = layOut(
        HStack({.spacing = 0}, box(), ZStack(box(), box().link("zelto://in")).link("zelto://eq"))
            .widgetURL("zelto://open?tab=home"),
        {.size = {40, 10}, .margin = 0, .now = {0}},
        measuring);
    EXPECT_EQ(displayList.widgetURL, "zelto://open?tab=home");
    ASSERT_EQ(displayList.links.size(), 2U);
    EXPECT_EQ(displayList.links[0].url, "zelto://eq");
    EXPECT_EQ(displayList.links[0].frame, (layout::Rect{20, 0, 20, 10}));
    // The inner one lies above the outer one.
    EXPECT_EQ(displayList.links[1].url, "zelto://in");
}

TEST(Margins, SurroundTheContent) {
    FixedMeasuring measuring;
    const auto displayList = layOut(box(), {.size = {164, 164}, .now = {0}}, measuring);
    EXPECT_EQ(std::get<layout::PlacedShape>(displayList.items.at(0)).frame, (layout::Rect{16, 16, 132, 132}));
}

TEST(OneLine, EndsAtEveryMandatoryBreak) {
    FixedMeasuring measuring;
    for (const char* text :
         {"one\ntwo",
          "one\vtwo",
          "one\ftwo",
          "one\rtwo",
          "one\r\ntwo",
          "one\u0085two",
          "one\u2028two\nthree",
          "one\u2029two"}) {
        const auto displayList =
            layOut(Text(text).font(10).lineLimit(1), {.size = {164, 164}, .now = {0}}, measuring);
        const auto& placed = std::get<layout::PlacedText>(displayList.items.at(0));
        EXPECT_EQ(placed.text, "one…") << text;
        EXPECT_EQ(placed.frame.height, measuring.lineHeight({.size = 10})) << text;
    }
}

TEST(Texts, AreWholeAlsoBehindANull) {
    FixedMeasuring measuring;
    for (const std::int64_t lines : {0, 1}) {
        const auto displayList = layOut(
            Text(std::string("ab\0cd", 5)).font(10).lineLimit(lines),
            {.size = {164, 164}, .now = {0}},
            measuring);
        EXPECT_EQ(std::get<layout::PlacedText>(displayList.items.at(0)).text, "abcd");
    }
}

TEST(ScaledToFill, OfWhatHasNoSizeTakesWhatItIsOffered) {
    FixedMeasuring measuring;
    const auto displayList =
        layout::layOut(Text("x").font(0).scaledToFill(), {.size = {164, 164}, .now = {0}}, measuring);
    for (const auto& item : displayList.items) {
        const auto& frame = std::get<layout::PlacedText>(item).frame;
        for (const double number : {frame.x, frame.y, frame.width, frame.height})
            EXPECT_TRUE(std::isfinite(number));
    }
}

TEST(Contrast, MakesTheSecondaryStyleAsStrongAndTheContainerBlack) {
    test::FixedMeasuring measuring;
    const ui::View view = ui::VStack(
                              {},
                              ui::Text("plain"),
                              ui::Text("dim").foreground(ui::secondary),
                              ui::Text("blue").foreground(ui::Color{0, 0, 1}))
                              .containerBackground(ui::LinearGradient{{0.1, 0.2, 0.3}, {0, 0, 0}});
    const auto colors = [&](layout::Contrast contrast) {
        const auto displayList =
            layout::layOut(view, {.size = {164, 164}, .now = {0}, .contrast = contrast}, measuring);
        std::string out = displayList.background ? ui::hexText(displayList.background->top) : "none";
        for (const auto& item : displayList.items)
            out += " " + ui::hexText(std::get<layout::PlacedText>(item).color);
        return out + " " + std::to_string(displayList.border);
    };
    EXPECT_EQ(colors(layout::Contrast::normal), "#19334C #FFFFFF #FFFFFF8C #0000FF 0");
    EXPECT_EQ(colors(layout::Contrast::high), "#000000 #FFFFFF #FFFFFF #0000FF 2");
}

}  // namespace
}  // namespace zelto::test
