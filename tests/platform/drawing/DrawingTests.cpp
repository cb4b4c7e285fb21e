#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "drawing/PNG.hpp"
#include "drawing/Renderer.hpp"
#include "layout/Layout.hpp"
#include "platform/drawing/Symbols.hpp"
#include "ui/Building.hpp"

namespace zelto::test {
namespace {

using namespace ui;
using drawing::Picture;
using drawing::Renderer;

constexpr Color red{1, 0, 0}, white{1, 1, 1};
constexpr LinearGradient black{{0, 0, 0}, {0, 0, 0}};

Picture draw(
    View view, layout::Size size, double scale = 1, drawing::Corners corners = drawing::Corners::square,
    LinearGradient background = black) {
    Renderer renderer;
    const auto displayList = layout::layOut(
        std::move(view).containerBackground(background),
        {.size = size, .margin = 0, .now = {0}},
        renderer.measuring());
    return renderer.draw(displayList, scale, corners);
}

int redOf(std::uint32_t pixel) {
    return static_cast<int>(pixel >> 16 & 0xFF);
}
int opacityOf(std::uint32_t pixel) {
    return static_cast<int>(pixel >> 24);
}

/// The pixel of a 100 × 100 picture at an angle in degrees, clockwise from twelve o'clock, and a distance
/// from the centre.
int redAt(const Picture& picture, double degrees, double distance) {
    const double angle = (degrees - 90) / 180 * 3.14159265358979;
    return redOf(picture.at(
        static_cast<int>(50 + distance * std::cos(angle)),
        static_cast<int>(50 + distance * std::sin(angle))));
}

View arc(double trim, LineCap cap = LineCap::round) {
    return Stroked(Circle{}, trim, {.style = red, .lineWidth = 10, .cap = cap})
        .rotation(-90)
        .padding(Edges::all, 10);  // a radius of 40
}

TEST(RingDrawing, StraddlesItsCircleAndGrowsClockwiseFromTwelve) {
    const Picture picture = draw(arc(0.25), {100, 100});
    for (const double angle : {10.0, 45.0, 80.0}) {
        EXPECT_EQ(redAt(picture, angle, 40), 255) << angle;
        EXPECT_EQ(redAt(picture, angle, 36.5), 255) << angle;
        EXPECT_EQ(redAt(picture, angle, 43.5), 255) << angle;
        EXPECT_EQ(redAt(picture, angle, 33), 0) << angle;
        EXPECT_EQ(redAt(picture, angle, 47), 0) << angle;
    }
    for (const double angle : {110.0, 180.0, 270.0, 340.0}) EXPECT_EQ(redAt(picture, angle, 40), 0) << angle;
}

TEST(RingDrawing, HasRoundCaps) {
    const Picture picture = draw(arc(0.25), {100, 100});
    EXPECT_EQ(redAt(picture, -4, 40), 255);  // 2.8 points before the start
    EXPECT_EQ(redAt(picture, 94, 40), 255);  // and behind the end
    EXPECT_EQ(redAt(picture, -5.5, 44), 0);  // outside the half circle
    EXPECT_EQ(redAt(picture, -9, 40), 0);
}

TEST(RingDrawing, ShowsAStubForNearlyNothingAndAWholeForAll) {
    const Picture stub = draw(arc(0.01), {100, 100});
    EXPECT_EQ(redAt(stub, 1.8, 40), 255);
    EXPECT_EQ(redAt(stub, 20, 40), 0);
    const Picture whole = draw(arc(1), {100, 100});
    for (int angle = 0; angle < 360; angle += 5) EXPECT_EQ(redAt(whole, angle, 40), 255) << angle;
}

TEST(RingDrawing, LooksTheSameAsCairosOwnStroke) {
    // Butt caps go the long way; away from the ends both must agree but for the softness of an edge.
    const Picture fast = draw(arc(0.6), {100, 100}, 2), slow = draw(arc(0.6, LineCap::butt), {100, 100}, 2);
    int compared = 0;
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 200; ++x) {
            const double dx = x + 0.5 - 100, dy = y + 0.5 - 100;
            double angle = std::atan2(dx, -dy) / 3.14159265358979 * 180;
            if (angle < 0) angle += 360;
            if (angle < 12 || (angle > 204 && angle < 348) || angle > 348) continue;
            ++compared;
            EXPECT_NEAR(redOf(fast.at(x, y)), redOf(slow.at(x, y)), 24) << x << "," << y;
        }
    EXPECT_GT(compared, 15000);
}

TEST(ShapeDrawing, FillsGeometries) {
    const Picture capsule = draw(Filled(Capsule{}, red), {40, 20});
    EXPECT_EQ(redOf(capsule.at(20, 10)), 255);
    EXPECT_EQ(redOf(capsule.at(0, 0)), 0);
    const Picture rounded = draw(Filled(RoundedRectangle{8}, red), {40, 40});
    EXPECT_EQ(redOf(rounded.at(0, 20)), 255);
    EXPECT_EQ(redOf(rounded.at(0, 0)), 0);
    EXPECT_EQ(redOf(rounded.at(4, 4)), 255);
    const Picture circle = draw(Filled(Circle{}, red), {40, 20});
    EXPECT_EQ(redOf(circle.at(20, 10)), 255);
    EXPECT_EQ(redOf(circle.at(5, 10)), 0);  // the smaller side counts, centred
}

TEST(ShapeDrawing, StraightEdgesFallOnPixels) {
    // A row of bars as the equalizer has it: 10.5 points wide on a pitch of 13.5, of fractional heights.
    const auto bar = [](double height) {
        return Filled(RoundedRectangle{0}, red).frame({.width = 10.5, .height = height});
    };
    for (const double scale : {1.0, 2.0, 1.5}) {
        const Picture picture = draw(
            HStack({.alignment = VAlign::bottom, .spacing = 3}, bar(17), bar(23.8), bar(20.4), bar(10.2)),
            {52, 34},
            scale);
        // No pixel is only partly covered, and all bars are equally wide and stand on one line.
        std::vector<int> widths;
        const int foot = static_cast<int>(29 * scale) - 1;
        for (int x = 0, run = 0; x <= picture.width; ++x) {
            const bool inside = x < picture.width && redOf(picture.at(x, foot - 3)) == 255;
            if (!inside && run > 0) widths.push_back(run);
            run = inside ? run + 1 : 0;
        }
        EXPECT_EQ(widths, std::vector<int>(4, static_cast<int>(std::lround(10.5 * scale)))) << scale;
        for (const std::uint32_t pixel : picture.pixels)
            EXPECT_TRUE(redOf(pixel) == 0 || redOf(pixel) == 255) << scale;
    }
}

TEST(ShapeDrawing, EdgesAreTurnedWithTheirShape) {
    // What is turned has no edges to be put on pixels.
    const Picture picture =
        draw(Filled(RoundedRectangle{0}, red).frame({.width = 20.5, .height = 20.5}).rotation(30), {40, 40});
    EXPECT_EQ(redOf(picture.at(20, 20)), 255);
    EXPECT_GT(
        std::ranges::count_if(picture.pixels, [](std::uint32_t p) { return redOf(p) > 0 && redOf(p) < 255; }),
        40);
}

TEST(ShapeDrawing, ContinuousCornersReachFurtherAlongTheEdgeThanArcs) {
    // A circular corner of radius 24 leaves the edge at 24; a continuous one begins at 1.6 times that.
    const Picture picture = draw(Filled(RoundedRectangle{24}, red), {120, 120}, 4);
    EXPECT_EQ(redOf(picture.at(4 * 60, 0)), 255);
    EXPECT_LT(redOf(picture.at(4 * 26, 0)), 255);
    EXPECT_EQ(redOf(picture.at(4 * 39, 0)), 255);
}

TEST(SparklineDrawing, RunsFromEdgeToEdge) {
    const Picture line = draw(Stroked(Polyline{{1, 0}}, {.style = red, .lineWidth = 2}), {40, 20});
    EXPECT_GT(redOf(line.at(0, 0)), 100);
    EXPECT_GT(redOf(line.at(20, 10)), 100);
    EXPECT_GT(redOf(line.at(39, 19)), 100);
    EXPECT_EQ(redOf(line.at(35, 3)), 0);
    const Picture nothing = draw(Stroked(Polyline{{1}}, {.style = red, .lineWidth = 2}), {40, 20});
    for (const std::uint32_t pixel : nothing.pixels) EXPECT_EQ(pixel, 0xFF000000U);
}

TEST(Background, RunsFromTopToBottomAndLeavesCornersOpen) {
    const Picture picture = draw(Spacer(), {164, 164}, 1, drawing::Corners::rounded, {{1, 0, 0}, {0, 0, 0}});
    EXPECT_GT(redOf(picture.at(82, 1)), 250);
    EXPECT_LT(redOf(picture.at(82, 162)), 5);
    EXPECT_EQ(opacityOf(picture.at(0, 0)), 0);
    EXPECT_EQ(opacityOf(picture.at(163, 163)), 0);
    EXPECT_EQ(opacityOf(picture.at(82, 82)), 255);
}

TEST(Rim, KeepsAWidgetsEdgeInSightOnBlack) {
    for (const double scale : {1.0, 2.0, 3.0}) {
        const Picture plain = draw(Spacer(), {164, 164}, scale);
        const Picture rounded = draw(Spacer(), {164, 164}, scale, drawing::Corners::rounded);
        const Picture outlined = draw(Spacer(), {164, 164}, scale, drawing::Corners::outlined);
        const int middle = plain.width / 2, last = plain.width - 1;
        for (const Picture* picture : {&rounded, &outlined}) {
            // One pixel wide on every side, and faint.
            for (const auto& [x, y] : {std::pair{middle, 0}, {0, middle}, {last, middle}, {middle, last}})
                EXPECT_NEAR(redOf(picture->at(x, y)), 255 * 0.09, 3) << scale;
            for (const auto& [x, y] :
                 {std::pair{middle, 1},
                  {1, middle},
                  {last - 1, middle},
                  {middle, last - 1},
                  {middle, middle}})
                EXPECT_EQ(redOf(picture->at(x, y)), 0) << scale;
        }
        EXPECT_EQ(redOf(plain.at(middle, 0)), 0);
        // A window that cuts its corners off by itself has no holes there.
        EXPECT_EQ(opacityOf(rounded.at(0, 0)), 0);
        for (const std::uint32_t pixel : outlined.pixels) ASSERT_EQ(opacityOf(pixel), 255);
    }
}

int inkedPixels(const Picture& picture) {
    return static_cast<int>(
        std::ranges::count_if(picture.pixels, [](std::uint32_t p) { return redOf(p) > 40; }));
}

TEST(TextDrawing, PutsInkWithinItsFrame) {
    for (const Design design : {Design::standard, Design::rounded}) {
        const Picture picture = draw(Text("73%").font(22, Weight::bold, design), {80, 40}, 2);
        EXPECT_GT(inkedPixels(picture), 300);
        for (int x = 0; x < 160; ++x) EXPECT_EQ(redOf(picture.at(x, 0)), 0);
    }
}

TEST(TextDrawing, LaysOutTheSameAtEveryScale) {
    Renderer renderer;
    auto& measuring = renderer.measuring();
    const modifier::Font font{.size = 11};
    const auto before = measuring.measure("Relógio mundial", font, {}, 0);
    draw(Text("Relógio mundial").font(11), {100, 20}, 3);
    const auto after = measuring.measure("Relógio mundial", font, {}, 0);
    EXPECT_EQ(before.size, after.size);
    EXPECT_NE(before.size.width, std::round(before.size.width));  // nothing is fitted to pixels
}

TEST(TextDrawing, LinesAreWholePointsHigh) {
    Renderer renderer;
    auto& measuring = renderer.measuring();
    for (const auto& [size, height] :
         {std::pair{8.0, 10.0},
          {9, 11},
          {10, 13},
          {11, 14},
          {12, 15},
          {13, 16},
          {14, 17},
          {18, 22},
          {24, 30}})
        for (const Design design : {Design::standard, Design::rounded}) {
            const modifier::Font font{.size = size, .design = design};
            EXPECT_EQ(measuring.lineHeight(font), height) << size;
            // Also where a character comes from another font.
            for (const char* text : {"Disco", "日本語", "🇧🇷 Brasil", "ตัวอย่าง", "हिन्दी", "العربية"})
                EXPECT_EQ(measuring.measure(text, font, {}, 0).size.height, height) << size << text;
            EXPECT_EQ(measuring.measure("a\nb", font, {}, 0).size.height, 2 * height) << size;
        }
}

TEST(TextDrawing, KnowsWhatNoLineBreakMayDivide) {
    Renderer renderer;
    auto& measuring = renderer.measuring();
    const modifier::Font font{.size = 11};
    const auto width = [&](const char* text) { return measuring.measure(text, font, {}, 0).size.width; };
    EXPECT_NEAR(measuring.longestRun("Relógio mundial", font), width("mundial"), 0.01);
    EXPECT_NEAR(measuring.longestRun("2:05\u202FPM", font), width("2:05\u202FPM"), 0.01);
    EXPECT_NEAR(measuring.longestRun("112,4\u00A0GB livres", font), width("112,4\u00A0GB"), 0.01);
    EXPECT_LT(measuring.longestRun("日本語の文章", font), width("日本語の文章"));
    EXPECT_EQ(measuring.longestRun("", font), 0);
}

/// The columns with ink in them, as runs from and to.
std::vector<std::pair<int, int>> inkRuns(const Picture& picture) {
    std::vector<std::pair<int, int>> runs;
    for (int x = 0; x < picture.width; ++x) {
        bool ink = false;
        for (int y = 0; y < picture.height; ++y) ink = ink || redOf(picture.at(x, y)) > 60;
        if (!ink) continue;
        if (!runs.empty() && runs.back().second == x)
            ++runs.back().second;
        else
            runs.emplace_back(x, x + 1);
    }
    return runs;
}

TEST(TextDrawing, HasNoBlankBeforeAnEllipsis) {
    // At every width at which something is cut: the three dots stand close to what is before them. A blank is
    // twelve pixels wide here, and the letters' own room less than eight.
    const std::string text = "Levar a documentação ao cartório e à prefeitura";
    for (int width = 30; width < 200; ++width) {
        const auto runs = inkRuns(draw(
            Text(text).font(11).lineLimit(1).frame({.width = static_cast<double>(width), .height = 20}),
            {220, 20},
            4));
        ASSERT_GT(runs.size(), 3U) << width;
        EXPECT_LT(runs[runs.size() - 3].first - runs[runs.size() - 4].second, 10) << width;
    }
}

TEST(TextDrawing, KeepsACutTextFromRightToLeftInItsFrame) {
    const std::string title = "مراجعة المشروع الأسبوعية مع الفريق كله في المكتب";
    for (int width = 40; width < 200; width += 7) {
        Renderer renderer;
        const auto displayList = layout::layOut(
            HStack({.spacing = 0}, Text(title).font(11).lineLimit(1), Spacer(0)).containerBackground(black),
            {.size = {static_cast<double>(width), 20}, .margin = 0, .now = {0}},
            renderer.measuring());
        const auto& frame = std::get<layout::PlacedText>(displayList.items.at(0)).frame;
        const auto runs = inkRuns(renderer.draw(displayList, 2));
        ASSERT_FALSE(runs.empty());
        EXPECT_GE(runs.front().first, 2 * frame.x - 2) << width;
        EXPECT_LE(runs.back().second, 2 * (frame.x + frame.width) + 2) << width;
        EXPECT_LT(runs.front().first, 12) << width;
    }
}

TEST(TextDrawing, FallsBackToAnotherFontWhereTheSystemFontIsMissing) {
    // It is here: the tests install it.
    EXPECT_EQ(Renderer::substituteFont(), std::nullopt);
}

TEST(TextDrawing, MonospacedDigitsAreOfOneWidth) {
    Renderer renderer;
    const modifier::Font font{.size = 13, .weight = Weight::semibold, .digits = Digits::monospaced};
    const auto width = [&](const char* text) {
        return renderer.measuring().measure(text, font, {}, 0).size.width;
    };
    EXPECT_NEAR(width("11:11"), width("20:38"), 1e-6);
}

TEST(TextDrawing, CutsWithAnEllipsisWithinTheWidth) {
    Renderer renderer;
    const auto cut = renderer.measuring().measure("Reunião semanal com a equipe", {.size = 11}, 80, 1);
    EXPECT_LE(cut.size.width, 80.01);
    EXPECT_NEAR(cut.size.height, renderer.measuring().lineHeight({.size = 11}), 0.01);
}

TEST(TextDrawing, FlagsAreDrawnInColourAtTheSizeOfText) {
    Renderer renderer;
    const auto flag = renderer.measuring().measure("🇧🇷", {.size = 16}, {}, 0);
    EXPECT_LT(flag.size.width, 30);
    const Picture picture = draw(Text("🇧🇷").font(16), {40, 30}, 2);
    const auto isGreen = [](std::uint32_t p) { return (p >> 8 & 0xFF) > 120 && redOf(p) < 60; };
    EXPECT_GT(std::ranges::count_if(picture.pixels, isGreen), 100);
}

TEST(SymbolDrawing, KnowsEverySymbolThatWidgetsName) {
    for (const char* name :
         {"battery.75percent",
          "bolt.fill",
          "calendar",
          "checkmark.seal.fill",
          "cpu",
          "cup.and.saucer.fill",
          "doc.on.clipboard",
          "exclamationmark.circle",
          "exclamationmark.triangle.fill",
          "fan",
          "globe",
          "internaldrive",
          "memorychip",
          "moon.fill",
          "moon.zzz.fill",
          "pin.fill",
          "slider.vertical.3",
          "sparkles",
          "sun.max.fill",
          "thermometer.medium",
          "waveform.path.ecg"}) {
        ASSERT_NE(drawing::symbolNamed(name), nullptr) << name;
        EXPECT_GT(inkedPixels(draw(Symbol(name).font(30).foreground(red), {40, 40})), 60) << name;
    }
    EXPECT_EQ(drawing::symbolNamed("no.such.symbol"), nullptr);
    EXPECT_EQ(inkedPixels(draw(Symbol("no.such.symbol").foreground(white), {40, 40})), 0);
}

TEST(SymbolDrawing, HasCutsOfWholePixelsForSmallSizes) {
    for (const char* name : {"memorychip", "thermometer.medium"}) {
        const auto* symbol = drawing::symbolNamed(name);
        const auto* cut = drawing::symbolFor(name, 12);
        ASSERT_TRUE(symbol && cut) << name;
        EXPECT_NE(symbol, cut);
        EXPECT_EQ(drawing::symbolFor(name, 24), symbol);
        // The layout does not know which one is drawn.
        EXPECT_EQ(symbol->left, cut->left);
        EXPECT_EQ(symbol->right, cut->right);
        const Picture small = draw(Symbol(name).font(10).foreground(red), {20, 20});
        EXPECT_GT(inkedPixels(small), 20) << name;
        for (const std::uint32_t pixel : small.pixels)
            EXPECT_TRUE(redOf(pixel) == 0 || redOf(pixel) == 255) << name << " " << redOf(pixel);
        // At twice the pixels there is room for the drawing itself.
        const Picture large = draw(Symbol(name).font(10).foreground(red), {20, 20}, 2);
        EXPECT_GT(
            std::ranges::count_if(
                large.pixels, [](std::uint32_t p) { return redOf(p) > 0 && redOf(p) < 255; }),
            20);
    }
}

TEST(ImageDrawing, IsClippedToItsShape) {
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < 4; ++i) pixels.insert(pixels.end(), {255, 0, 0, 255});
    View image{.node = node::Image{2, 2, Bytes{pixels}}, .modifiers = {}};
    const Picture picture = draw(
        std::move(image).scaledToFill().frame({.width = 22, .height = 22}).clipShape(RoundedRectangle{8}),
        {22, 22});
    EXPECT_EQ(redOf(picture.at(11, 11)), 255);
    EXPECT_EQ(redOf(picture.at(0, 0)), 0);
}

TEST(PNG, LeavesOpacityOutWhenThereIsNone) {
    Picture picture{2, 1, {0xFF102030, 0xFFFFFFFF}};
    const auto opaque = drawing::encodePNG(picture);
    ASSERT_TRUE(opaque);
    EXPECT_EQ(opaque->substr(1, 3), "PNG");
    EXPECT_EQ((*opaque)[25], 2);  // colour type RGB
    picture.pixels[0] = 0x80101010;
    EXPECT_EQ((*drawing::encodePNG(picture))[25], 6);  // with opacity
}

TEST(SVG, HoldsOutlinesAndTheGradient) {
    Renderer renderer;
    const auto displayList = layout::layOut(
        Symbol("cpu").foreground(red).containerBackground({{1, 1, 1}, {0, 0, 0}}),
        {.size = {20, 20}, .now = {0}},
        renderer.measuring());
    const auto svg = renderer.svg(displayList);
    ASSERT_TRUE(svg);
    EXPECT_NE(svg->find("<svg"), std::string::npos);
    EXPECT_NE(svg->find("linearGradient"), std::string::npos);
    EXPECT_NE(svg->find("<path"), std::string::npos);
}

}  // namespace
}  // namespace zelto::test
