#include <limits>

#include <gtest/gtest.h>

#include "ui/Building.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::test {

using namespace widgetkit;
namespace {

using namespace ui;

/// A view with every kind of node and every modifier.
View everything() {
    View image{.node = node::Image{2, 1, Bytes{{1, 2, 3, 4, 5, 6, 7, 8}}}, .modifiers = {}};
    return VStack(
               {.alignment = HAlign::trailing, .spacing = 0.1},
               HStack(
                   {.alignment = VAlign::firstTextBaseline},
                   Text("é\n\"/\\"),
                   Symbol("fan"),
                   Spacer(),
                   Spacer(0)),
               ZStack(
                   Stroked(Circle{}, 0.3, {.style = secondary, .lineWidth = 1, .cap = LineCap::round}),
                   Stroked(
                       Polyline{{0, 0.5, 1}},
                       {.style = Color{1, 0, 0}, .lineWidth = 1.5, .join = LineJoin::round})),
               Grid(
                   {.columns = 2, .rowSpacing = 4, .alignment = HAlign::leading},
                   Text("a"),
                   Text("b"),
                   Text("c")),
               Countdown({800000000.25}).monospacedDigits(12, Weight::semibold),
               std::move(image)
                   .scaledToFill()
                   .frame({.width = 22, .height = 22})
                   .clipShape(RoundedRectangle{4}),
               Filled(Capsule{}, Color{0.1, 0.2, 0.3, 0.4}).stretched({.width = true, .height = true}))
        .font(11, Weight::bold, Design::rounded)
        .foreground(Color{1, 1, 1})
        .lineLimit(1)
        .minimumScale(0.5)
        .padding(Edges::all, 3)
        .rotation(-90)
        .background(Circle{}, secondary)
        .link("zelto://eq")
        .widgetURL("zelto://open?tab=home")
        .containerBackground({{0, 0, 0}, {1, 1, 1}});
}

Reply reply(View view) {
    Reply out;
    out.id = 7;
    out.timeline = ArchivedTimeline{{{{1}, view}, {{2.5}, std::move(view)}}, {3}};
    return out;
}

TEST(Archive, ReadsBackEqualToWhatWasWritten) {
    const Reply written = reply(everything());
    const auto line = encodeReply(written);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->find('\n'), std::string::npos);
    EXPECT_EQ(decodeReply(*line).value(), written);
}

TEST(Archive, RefusesToWriteWhatIsNotFinite) {
    EXPECT_FALSE(encodeReply(reply(Text("x").font(std::numeric_limits<double>::quiet_NaN()))));
    EXPECT_FALSE(encodeReply(reply(Text("\xff"))));
}

/// What a host finds wrong with a reply: with its form, of which nothing is left, or with what it holds,
/// which is left as an error to the same request.
std::string fault(const Reply& reply) {
    const auto read = decodeReply(encodeReply(reply).value_or(""));
    if (!read) return read.fault().text();
    if (!read->error) return "";
    EXPECT_EQ(read->id, reply.id);
    EXPECT_FALSE(read->widgets || read->entry || read->timeline);
    const std::string prefix = "out of bounds: ";
    EXPECT_TRUE(read->error->starts_with(prefix)) << *read->error;
    return read->error->substr(prefix.size());
}

TEST(Archive, BoundsWhatAStrangerMaySend) {
    View deep = Text("x");
    for (int i = 0; i < 60; ++i) deep = VStack({}, std::move(deep));
    EXPECT_EQ(fault(reply(deep)), "nodes nested too deeply");
    EXPECT_EQ(fault(reply(stack(VStackOptions{}, Views(5000, Text(""))))), "too many nodes");
    EXPECT_EQ(fault(reply(Text(std::string(20'000, 'x')))), "a text that is too long");
    EXPECT_EQ(fault(reply(Text("x").font(501))), "a font that is too large");
    EXPECT_EQ(fault(reply(Text("x").font(500))), "");
    // Also where a text inherits its font, and not where it has a smaller one of its own.
    EXPECT_EQ(fault(reply(stack(VStackOptions{}, Views(8, Text("x"))).font(101))), "");
    EXPECT_EQ(fault(reply(stack(VStackOptions{}, Views(9, Text("x"))).font(101))), "too many large texts");
    EXPECT_EQ(fault(reply(stack(VStackOptions{}, Views(9, Text("x").font(100))).font(101))), "");
    EXPECT_EQ(
        fault(reply(stack(
            VStackOptions{},
            Views(
                9,
                Stroked(Polyline{std::vector<double>(4000, 0.5)}, {.style = secondary, .lineWidth = 1}))))),
        "too many values");
    const View thick = Stroked(Circle{}, {.style = secondary, .lineWidth = 25});
    EXPECT_EQ(fault(reply(stack(VStackOptions{}, Views(64, thick)))), "");
    EXPECT_EQ(fault(reply(stack(VStackOptions{}, Views(65, thick)))), "too many thick strokes");
    EXPECT_EQ(fault(reply(Text("x").frame({.width = 1e5, .height = {}}))), "a number that is too large");
    EXPECT_EQ(fault(reply(Spacer(-1))), "a negative size");
    EXPECT_EQ(fault(reply(Filled(RoundedRectangle{-1}, secondary))), "a negative size");
    EXPECT_EQ(fault(reply(Stroked(Circle{}, {.style = secondary, .lineWidth = -1}))), "a negative size");
    EXPECT_EQ(
        fault(reply(stack(VStackOptions{}, Views(5, Text(std::string(14'000, 'x')))))), "too much text");
    EXPECT_EQ(
        fault(reply(grid({.columns = 0, .rowSpacing = 0}, {}))),
        "a grid without a sensible number of columns");
    EXPECT_EQ(
        fault(reply({.node = node::Image{2, 2, Bytes{{1, 2, 3, 4}}}, .modifiers = {}})),
        "an image whose pixels do not match its size");
    EXPECT_EQ(
        fault(reply({.node = node::Image{100'000, 100'000, {}}, .modifiers = {}})),
        "an image of an unreasonable size");
    EXPECT_EQ(fault(reply(Text("x").font(-1))), "a negative size");
    EXPECT_EQ(fault(reply(Text("x").frame({.width = -1, .height = {}}))), "a negative size");
    EXPECT_EQ(
        fault(reply(Stroked(Polyline{std::vector<double>(9000, 0.5)}, {.style = secondary, .lineWidth = 1}))),
        "too many values");
    EXPECT_EQ(fault(reply(Countdown({1e13}))), "a date beyond all clocks");
    View many = Text("x");
    for (int i = 0; i < 40; ++i) many = std::move(many).lineLimit(1);
    EXPECT_EQ(fault(reply(many)), "too many modifiers on a node");
}

TEST(Archive, BoundsLinksAndWhatTheyAreCalled) {
    EXPECT_EQ(fault(reply(stack(VStackOptions{}, Views(64, Text("x").link("a:b"))))), "");
    EXPECT_EQ(fault(reply(stack(VStackOptions{}, Views(65, Text("x").link("a:b"))))), "too many links");
    EXPECT_EQ(fault(reply(Text("x").link("a:" + std::string(8 << 10, 'x')))), "a link that is too long");
    EXPECT_EQ(fault(reply(Text("x").widgetURL("a:" + std::string(8 << 10, 'x')))), "a link that is too long");
    const std::string longName(257, 'x'), longestName(256, 'x');
    EXPECT_EQ(fault(reply(Text(longName).link("a:b"))), "a link whose name is too long");
    EXPECT_EQ(fault(reply(Text(longestName).link("a:b"))), "");
    // As it is read: with the commas between its texts, and by its label where it has one.
    const Views halves(2, Text(std::string(127, 'x')));
    EXPECT_EQ(fault(reply(stack(VStackOptions{}, halves).link("a:b"))), "");
    EXPECT_EQ(
        fault(reply(stack(VStackOptions{}, Views(2, Text(std::string(128, 'x')))).link("a:b"))),
        "a link whose name is too long");
    EXPECT_EQ(fault(reply(Text(longName).accessibilityLabel("x").link("a:b"))), "");
    EXPECT_EQ(
        fault(reply(VStack({}, Text("x").accessibilityLabel(longName)).link("a:b"))),
        "a link whose name is too long");
}

TEST(Archive, BoundsTheWholeReply) {
    Reply many = reply(Text(""));
    many.timeline->entries.resize(257, many.timeline->entries[0]);
    EXPECT_EQ(fault(many), "too many entries");
    Reply never = reply(Text(""));
    never.timeline->reloadAfter = {1.7e308};
    EXPECT_EQ(fault(never), "a date beyond all clocks");
    Reply late = reply(Text(""));
    late.timeline->entries.back().date = {1e13};
    EXPECT_EQ(fault(late), "a date beyond all clocks");
    Reply kinds;
    kinds.id = 1;
    kinds.widgets.emplace(65);
    EXPECT_EQ(fault(kinds), "too many widgets");
    Reply error;
    error.error = "\x1b[31m\n" + std::string(190, 'x') + "\u00e9\u00e9\u00e9";
    const auto tamed = decodeReply(encodeReply(error).value());
    EXPECT_EQ(tamed->error, " [31m " + std::string(190, 'x') + "\u00e9\u00e9");
}

TEST(Archive, ChecksTheReplyItself) {
    Reply none;
    EXPECT_EQ(fault(none), "a reply needs exactly one of widgets, entry, timeline and error");
    Reply without;
    without.timeline = ArchivedTimeline{};
    EXPECT_EQ(fault(without), "a timeline without entries");
    Reply unordered = reply(Text(""));
    std::swap(unordered.timeline->entries[0], unordered.timeline->entries[1]);
    EXPECT_EQ(fault(unordered), "timeline entries out of order");
    const auto foreign =
        decodeReply(R"({"id":1,"entry":{"date":0,"view":{"node":{"Web":{}},"modifiers":[]}}})");
    EXPECT_EQ(foreign.fault().text(), "entry.view.node: unknown case \"Web\"");
    const auto empty = decodeReply(R"({"id":1,"entry":{"date":0,"view":{"node":{},"modifiers":[]}}})");
    EXPECT_EQ(empty.fault().text(), "entry.view.node: expected an object with one key");
}

}  // namespace
}  // namespace zelto::test
