#include <gtest/gtest.h>

#include "ui/Building.hpp"
#include "ui/Outline.hpp"

namespace zelto::test {
namespace {

using namespace ui;

TEST(Outline, NamesEveryNodeAndEveryModifierInOrder) {
    const View view =
        VStack(
            {.alignment = HAlign::leading, .spacing = 6},
            Text("a \"b\"\nc").font(11, Weight::bold).foreground(secondary).lineLimit(1),
            Spacer(),
            Spacer(4),
            Countdown({788918400.5}).monospacedDigits(12),
            Stroked(Circle{}, 0.25, {.style = Color{1, 0, 0}, .lineWidth = 1.5}).rotation(-90),
            Filled(Capsule{}, Color{1, 1, 1}.withOpacity(0.12)).frame({.width = 3, .height = {}}),
            HStack({}, Symbol("cpu"))
                .padding(Edges::vertical, 5)
                .background(RoundedRectangle{7}, Color{0, 0, 0})
                .stretched({.width = true, .height = false})
                .link("zelto://eq"))
            .widgetURL("zelto://open")
            .containerBackground({{0, 0, 0}, {1, 1, 1}});
    EXPECT_EQ(
        outline(view),
        "VStack alignment=leading spacing=6 .widgetURL(\"zelto://open\") "
        ".containerBackground(#000000..#FFFFFF)\n"
        "  Text \"a \\\"b\\\"\\nc\" .font(size=11 weight=bold design=standard digits=proportional)"
        " .foreground(secondary) .lineLimit(1)\n"
        "  Spacer\n"
        "  Spacer 4\n"
        "  Countdown 788918400.5 .font(size=12 weight=regular design=standard digits=monospaced)\n"
        "  Shape geometry=circle trim=0.25"
        " paint=stroke(style=#FF0000 lineWidth=1.5 cap=butt join=miter miterLimit=10) .rotation(-90)\n"
        "  Shape geometry=capsule paint=fill(#FFFFFF1F) .frame(width=3)\n"
        "  HStack alignment=center .padding(top=5 leading=0 bottom=5 trailing=0)"
        " .background(geometry=roundedRectangle(7) style=#000000) .stretch(width=true height=false)"
        " .link(\"zelto://eq\")\n"
        "    Symbol \"cpu\"\n");
}

TEST(HexText, RoundsAndCarriesOpacity) {
    EXPECT_EQ(hexText({0.25, 0.85, 0.70}), "#40D9B2");
    EXPECT_EQ(hexText({0, 0, 0, 0}), "#00000000");
    EXPECT_EQ(hexText({2, -1, 0.5}), "#FF007F");
}

struct Component {
    View body() const { return Text("component"); }
};

TEST(Children, AreViewsComponentsOptionalViewsAndLists) {
    const std::vector<int> numbers{1, 2};
    const Views views = list(
        Text("view"),
        Component{},
        when(false, [] { return Text("never"); }),
        when(true, [] { return Text("when"); }),
        ifPresent(std::optional<int>(3), [](int n) { return Text(std::to_string(n)); }),
        ifPresent(std::optional<int>(), [](int) { return Text("never"); }),
        forEach(numbers, [](int n) { return Text(std::to_string(n)); }));
    const Views expected =
        list(Text("view"), Text("component"), Text("when"), Text("3"), Text("1"), Text("2"));
    EXPECT_EQ(views, expected);
}

TEST(Bytes, TravelAsBase64) {
    for (const auto& [text, bytes] : std::vector<std::pair<std::string, std::vector<std::uint8_t>>>{
             {"", {}}, {"AA==", {0}}, {"AP8=", {0, 255}}, {"AP8B", {0, 255, 1}}}) {
        EXPECT_EQ(Bytes{bytes}.text(), text);
        EXPECT_EQ(Bytes::parse(text)->bytes, bytes);
    }
    for (const char* bad : {"A", "A===", "AA=A", "AB==", "A*==", "===="})
        EXPECT_FALSE(Bytes::parse(bad)) << bad;
}

}  // namespace
}  // namespace zelto::test
