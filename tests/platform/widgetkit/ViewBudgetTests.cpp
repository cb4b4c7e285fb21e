#include <algorithm>

#include <gtest/gtest.h>

#include "records/JSONEncoder.hpp"
#include "ui/Building.hpp"
#include "ui/Outline.hpp"
#include "ui/Reading.hpp"
#include "widgetkit/ViewBounds.hpp"

namespace zelto::test {

using namespace records;
using namespace widgetkit;
namespace {

using namespace ui;

View cut(View view) {
    keepToBudget(view, 344);
    const auto checked = check(view);
    EXPECT_TRUE(checked) << checked.fault().text();
    return view;
}
std::string cutText(const std::string& text) {
    return std::get<node::Text>(cut(Text(text)).node).text;
}
std::string repeated(const std::string& piece, std::size_t count) {
    std::string out;
    while (count-- > 0) out += piece;
    return out;
}

TEST(ViewBudget, LeavesAloneWhatFits) {
    const View view = VStack(
        {},
        Text(std::string(1024, 'x')),
        Symbol("fan"),
        Countdown({Date::latest}),
        Stroked(Polyline{std::vector<double>(5504, 0.5)}, {.style = secondary, .lineWidth = 1}),
        Text("a").link("zelto://" + std::string(8000, 'x')));
    EXPECT_EQ(cut(view), view);
}

TEST(ViewBudget, CutsATextAtTheEndOfACharacter) {
    EXPECT_EQ(cutText(std::string(1025, 'x')), std::string(1024, 'x'));
    EXPECT_EQ(cutText("a" + repeated("é", 600)), "a" + repeated("é", 511));
    // As it is written: six bytes each.
    EXPECT_EQ(cutText(repeated("\x01", 1024)), repeated("\x01", 170));
    EXPECT_EQ(cutText(repeated("/", 1024)), repeated("/", 512));
    // A letter keeps its accent or goes with it.
    EXPECT_EQ(cutText(std::string(1023, 'x') + "e\u0301"), std::string(1023, 'x'));
    // One character of more than two kilobytes is cut between code points.
    EXPECT_EQ(cutText("a" + repeated("\u0301", 1024)), "a" + repeated("\u0301", 511));
    EXPECT_EQ(cutText(std::string(12'000'000, 'x')).size(), 1024U);
}

TEST(ViewBudget, CutsTheLastTextsFirst) {
    Views texts;
    for (int i = 0; i < 60; ++i) texts.push_back(Text(std::string(1000, 'x')));
    const View view = cut(stack(VStackOptions{}, std::move(texts)));
    std::vector<std::size_t> sizes;
    for (const View& child : *childrenOf(view.node))
        sizes.push_back(std::get<node::Text>(child.node).text.size());
    EXPECT_EQ(std::ranges::count(sizes, 1000U), 49);
    EXPECT_EQ(sizes[49], 152U);
    EXPECT_EQ(std::ranges::count(sizes, 0U), 10);
}

TEST(ViewBudget, NamesALinkByTheBeginningOfWhatIsReadOfIt) {
    const auto nameOf = [](const View& view) { return joined(readingTexts(view, {})); };
    const View named =
        cut(HStack({}, Text(std::string(200, 'a')), Text(std::string(200, 'b'))).link("zelto://eq"));
    EXPECT_EQ(nameOf(named), std::string(200, 'a') + ", " + std::string(54, 'b'));
    // What is seen stays.
    EXPECT_EQ(std::get<node::Text>(childrenOf(named.node)->at(1).node).text.size(), 200U);
    // A label that is too long is replaced, not doubled.
    const View labelled = cut(Text("x").accessibilityLabel(std::string(300, 'c')).link("zelto://eq"));
    EXPECT_EQ(nameOf(labelled), std::string(256, 'c'));
    EXPECT_EQ(labelled.modifiers.size(), 2U);
    // Without a link there is no name to cut.
    EXPECT_EQ(nameOf(cut(Text(std::string(300, 'a')))), std::string(300, 'a'));
}

TEST(ViewBudget, LeavesOutALinkThatIsTooLongAndKeepsItsButton) {
    const View view = cut(Text("Entrar").padding(Edges::all, 3).link("zelto://" + std::string(9000, 'x')));
    EXPECT_EQ(outline(view), "Text \"Entrar\" .padding(top=3 leading=3 bottom=3 trailing=3)\n");
}

TEST(ViewBudget, ThinsAHistoryToWhatCanBeToldApart) {
    std::vector<double> values(100'000, 0.5);
    values.front() = 0.1;
    values[70'000] = 0.9;
    values[70'001] = 0.2;
    values.back() = 0.3;
    const View view = cut(Stroked(Polyline{values}, {.style = secondary, .lineWidth = 1}));
    const auto& kept = std::get<Polyline>(std::get<node::Shape>(view.node).geometry).fractions;
    ASSERT_EQ(kept.size(), 4U * 4 * 344);
    EXPECT_EQ(kept.front(), 0.1);
    EXPECT_EQ(kept.back(), 0.3);
    // The peak and the dip stand where they stood, in their order.
    const auto peak = std::ranges::find(kept, 0.9), dip = std::ranges::find(kept, 0.2);
    EXPECT_LT(peak, dip);
    EXPECT_NEAR(static_cast<double>(peak - kept.begin()) / static_cast<double>(kept.size()), 0.7, 0.001);
    EXPECT_EQ(std::ranges::count(kept, 0.9), 1);
}

TEST(ViewBudget, HoldsCountdownsAtTheEndsOfTheClocks) {
    for (const auto& [end, held] :
         {std::pair{1e300, Date::latest}, {-1e300, Date::earliest}, {2700.5, 2700.5}})
        EXPECT_EQ(std::get<node::Countdown>(cut(Countdown({end})).node).end.sinceReference, held);
}

TEST(ViewBudget, LeavesOutTheEndOfAListThatIsTooLong) {
    const auto cell = [] { return HStack({}, Filled(Circle{}, secondary), Text("x")); };
    const auto rows = [&](std::size_t count) {
        Views cells;
        for (std::size_t i = 0; i < count; ++i) cells.push_back(cell());
        return VStack({}, Text("header"), grid({.columns = 2, .rowSpacing = 4}, std::move(cells)), Spacer(0));
    };
    const auto left = [](const View& view) { return childrenOf(childrenOf(view.node)->at(1).node)->size(); };
    EXPECT_EQ(left(cut(rows(300))), 300U);
    const View many = cut(rows(5000));
    EXPECT_EQ(left(many), 332U);
    // Nothing else is missing.
    EXPECT_EQ(childrenOf(many.node)->size(), 3U);
}

}  // namespace
}  // namespace zelto::test
