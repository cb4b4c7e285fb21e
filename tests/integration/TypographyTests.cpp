// Texts of whole widgets in the real font: titles and times stay whole, letters stand where they belong.

#include <cmath>
#include <optional>
#include <set>

#include <gtest/gtest.h>

#include "drawing/Renderer.hpp"
#include "layout/Layout.hpp"
#include "platform/drawing/Symbols.hpp"
#include "tests/support/Looks.hpp"

namespace zelto::test {

using namespace shared;
using namespace texts;
using namespace widget;
using namespace widgetkit;
namespace {

struct Typography : testing::Test {
    drawing::Renderer renderer;

    layout::DisplayList place(const std::string& kind, WidgetFamily family, const Look& look) {
        const ui::Size size = sizeOf(family);
        return layout::layOut(
            view(kind, family, look), {.size = size, .now = look.now}, renderer.measuring());
    }
    static std::optional<layout::PlacedText> find(
        const layout::DisplayList& displayList, const std::string& text) {
        for (const auto& item : displayList.items)
            if (const auto* placed = std::get_if<layout::PlacedText>(&item); placed && placed->text == text)
                return *placed;
        return std::nullopt;
    }
    /// Drawn on one line, and all of it.
    static bool isWhole(const std::optional<layout::PlacedText>& text) { return text && !text->width; }
    static Look sample() { return {.snapshot = WidgetSnapshot::sample(wednesday)}; }
};

TEST_F(Typography, CareKeepsItsTitleAtEveryAge) {
    int ages = 0;
    for (const char* locale : {"pt_BR", "en_US", "de_DE"})
        // Each age is a twentieth longer than the one before, from a second to more than ten years.
        for (double age = 1; age < 4e8; age = std::ceil(age * 1.05)) {
            Look look = sample();
            look.environment.locale = locale;
            look.snapshot->careDate = wednesday - age;
            const auto displayList = place("ZeltoCare", small, look);
            EXPECT_TRUE(isWhole(find(displayList, "Cuidados"))) << locale << " " << age;
            const std::string when = Formatting(look.environment).relativeDate(wednesday - age, wednesday);
            const auto trailing = find(displayList, when);
            ASSERT_TRUE(isWhole(trailing)) << locale << " " << when;
            EXPECT_GE(trailing->scale, 0.6);
            EXPECT_LE(trailing->frame.height, 11) << when;
            EXPECT_LE(trailing->frame.x + trailing->frame.width, 148.01) << when;
            ++ages;
        }
    EXPECT_GT(ages, 600);
}

TEST_F(Typography, WorldClockKeepsItsTimesWholeInTwelveHourLocales) {
    for (const char* locale : {"en_US", "en_AU", "es_MX", "hi_IN", "ko_KR", "ar_EG", "pt_BR"})
        for (int minutes = 0; minutes < 24 * 60; minutes += 37) {
            Look look = sample();
            look.environment.locale = locale;
            look.date = wednesday + minutes * 60;
            look.snapshot->clockZones = {"America/Argentina/Buenos_Aires", "Asia/Ho_Chi_Minh"};
            const auto displayList = place("ZeltoWorldClock", small, look);
            const Formatting formatting(look.environment);
            for (const std::string zone :
                 {"America/Sao_Paulo", "Asia/Ho_Chi_Minh", "America/Argentina/Buenos_Aires"}) {
                const std::string time = formatting.shortTime(look.date, zone);
                const auto placed = find(displayList, time);
                ASSERT_TRUE(isWhole(placed)) << locale << " " << time;
                EXPECT_EQ(placed->scale, 1) << time;
                EXPECT_EQ(placed->frame.height, 16) << time;
                EXPECT_LE(placed->frame.x + placed->frame.width, 148.01) << time;
            }
        }
}

TEST_F(Typography, OverviewKeepsItsFreeSpaceWhole) {
    Look look = sample();
    for (std::uint64_t free = 100'000'000'000; free < 1'000'000'000'000; free += 7'771'313'131) {
        look.live.diskFree = free;
        const std::string text =
            Formatting(look.environment).byteCount(static_cast<std::int64_t>(free)) + " livres";
        const auto placed = find(place("ZeltoWidget", medium, look), text);
        ASSERT_TRUE(isWhole(placed)) << text;
        EXPECT_GE(placed->scale, 0.75) << text;
    }
}

TEST_F(Typography, ADisksNameOfAnyLengthLeavesTheRingAlone) {
    const auto ring = [&](const std::string& name) {
        Look look = sample();
        look.snapshot->disk = WidgetSnapshot::Disk{.name = name, .total = 1'000'000'000, .available = 1000};
        for (const auto& item : place("ZeltoStorage", small, look).items)
            if (const auto* shape = std::get_if<layout::PlacedShape>(&item);
                shape && std::holds_alternative<ui::Circle>(shape->geometry))
                return shape->frame;
        return layout::Rect{};
    };
    const auto usual = ring("Disco");
    EXPECT_GT(usual.width, 70);
    for (const char* name :
         {"SSD Samsung T7 Shield",
          "Arquivos da família",
          "ArquivosDaFamíliaSemNenhumEspaçoEmBranco",
          "",
          "日本語のディスク"})
        EXPECT_EQ(ring(name), usual) << name;
    EXPECT_EQ(ring(std::string(500, 'x')), usual);
}

TEST_F(Typography, CareOfManyFindingsKeepsItsHeader) {
    Look look = sample();
    look.snapshot->careItems.assign(30, {.title = "Memória", .level = "ok", .summary = {}});
    const auto title = find(place("ZeltoCare", medium, look), "Cuidados");
    ASSERT_TRUE(isWhole(title));
    EXPECT_GE(title->frame.y, 16);
    EXPECT_LE(title->frame.y, 18);
}

/// Where the ink of a picture lies across it, in points, weighted by its coverage; absent without any.
std::optional<double> centreOfInk(
    const drawing::Picture& picture, const drawing::Picture& without, double scale) {
    double sum = 0, moment = 0;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const double ink =
                static_cast<double>(picture.at(x, y) & 0xFF) - static_cast<double>(without.at(x, y) & 0xFF);
            sum += ink;
            moment += ink * (x + 0.5);
        }
    if (sum < 200) return std::nullopt;
    return moment / sum / scale;
}

TEST_F(Typography, LettersStandWhereTheyBelong) {
    // Each letter is what a text has more than the same text without it. Its place at one pixel a point is
    // compared with that at twelve, where a pixel hardly counts: what differs from one letter to the next is
    // what a gap between them is off by.
    std::set<std::string> seen;
    double squares = 0;
    int gaps = 0;
    for (const auto& widget : ZeltoWidgetBundle{}.body())
        for (const WidgetFamily family : widget.info().families)
            for (const auto& item : place(widget.info().kind, family, sample()).items) {
                const auto* text = std::get_if<layout::PlacedText>(&item);
                // Flags bring their own pixels.
                if (!text || text->width || text->scale != 1 || text->text.starts_with('\xF0') ||
                    !seen.insert(text->text + std::to_string(text->font.size)).second)
                    continue;
                std::vector<double> offsets;
                const auto drawn = [&](const std::string& part, double scale) {
                    layout::PlacedText placed = *text;
                    placed.frame = {4, 4, text->frame.width, text->frame.height};
                    placed.color = {1, 1, 1};
                    placed.text = part;
                    layout::DisplayList displayList;
                    displayList.size = {text->frame.width + 12, text->frame.height + 8};
                    displayList.background = ui::LinearGradient{{0, 0, 0}, {0, 0, 0}};
                    displayList.items = {placed};
                    return renderer.draw(displayList, scale);
                };
                constexpr double fine = 12;
                std::array before{drawn("", 1), drawn("", fine)};
                for (std::size_t end = 1; end <= text->text.size(); ++end) {
                    if (end < text->text.size() && (text->text[end] & 0xC0) == 0x80) continue;
                    std::array with{
                        drawn(text->text.substr(0, end), 1), drawn(text->text.substr(0, end), fine)};
                    const auto coarse = centreOfInk(with[0], before[0], 1);
                    const auto exact = centreOfInk(with[1], before[1], fine);
                    if (coarse && exact) offsets.push_back(*coarse - *exact);
                    before = std::move(with);
                }
                for (std::size_t i = 1; i < offsets.size(); ++i) {
                    const double error = offsets[i] - offsets[i - 1];
                    squares += error * error;
                    ++gaps;
                }
            }
    ASSERT_GT(gaps, 300);
    EXPECT_LT(std::sqrt(squares / gaps), 0.05);
}

TEST_F(Typography, EverySymbolThatAWidgetNamesIsDrawn) {
    Look awake = sample(), tired = sample();
    tired.snapshot->awakeActive = false;
    tired.snapshot->careItems.clear();
    tired.live.charging = false;
    tired.live.battery = 5;
    tired.date = wednesday + 12 * 3600;
    Look pinned = sample();
    pinned.snapshot->clips[0].pinned = true;
    pinned.snapshot->careItems = {{.title = "Rede", .level = "ok", .summary = {}}};
    std::set<std::string> names;
    for (const Look& look : {awake, tired, pinned, Look{}})
        for (const auto& widget : ZeltoWidgetBundle{}.body())
            for (const WidgetFamily family : widget.info().families)
                for (const auto& item : place(widget.info().kind, family, look).items)
                    if (const auto* symbol = std::get_if<layout::PlacedSymbol>(&item))
                        names.insert(symbol->name);
    EXPECT_GE(names.size(), 18U);
    for (const std::string& name : names) EXPECT_TRUE(drawing::symbolNamed(name)) << name;
}

}  // namespace
}  // namespace zelto::test
