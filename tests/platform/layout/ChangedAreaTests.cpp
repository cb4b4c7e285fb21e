#include <functional>

#include <gtest/gtest.h>

#include "layout/ChangedArea.hpp"

namespace zelto::layout {
namespace {

PlacedText text(const std::string& words, Rect frame) {
    return {
        .frame = frame,
        .text = words,
        .font = {.size = 10},
        .scale = 0.5,
        .color = {1, 1, 1},
        .width = {},
        .lines = 1};
}
PlacedShape card(Rect frame, double opacity) {
    return {frame, ui::RoundedRectangle{8}, {}, ui::Fill{ui::Color{1, 1, 1, opacity}}};
}

DisplayList picture() {
    return {
        .size = {160, 160},
        .background = ui::LinearGradient{{0, 0, 0}, {0, 0, 0}},
        .items =
            {card({10, 10, 50, 50}, 0.1),
             text("um", {20, 20, 30, 10}),
             BeginClip{{0, 0, 100, 100}, ui::RoundedRectangle{8}},
             text("dois", {20, 90, 30, 10}),
             End{}},
        .links = {},
        .widgetURL = {}};
}

struct Change {
    const char* what;
    std::function<void(DisplayList&)> make;
    Rect area;
};

TEST(ChangedArea, HoldsWhatDiffers) {
    const Rect whole{0, 0, 160, 160};
    const PlacedSymbol symbol{{100, 100, 20, 24}, "bolt.fill", 20, {1, 1, 1}};
    for (const Change& change : std::vector<Change>{
             {"nothing", [](DisplayList&) {}, {}},
             {"a link, which is not painted", [](DisplayList& list) { list.widgetURL = "zelto://x"; }, {}},
             // By the shrunk font's size around both frames.
             {"a text",
              [](DisplayList& list) {
                  list.items[1] = text("três", {20, 20, 40, 10});
              },
              {15, 15, 50, 20}},
             {"within a clip",
              [](DisplayList& list) {
                  list.items[3] = text("?", {20, 90, 5, 10});
              },
              {15, 85, 40, 20}},
             {"two items",
              [](DisplayList& list) {
                  list.items[1] = text("?", {20, 20, 30, 10});
                  list.items[3] = text("?", {20, 90, 30, 10});
              },
              {15, 15, 40, 90}},
             {"a card",
              [](DisplayList& list) {
                  list.items[0] = card({10, 10, 50, 50}, 0.2);
              },
              {8, 8, 54, 54}},
             {"one at the edge",
              [](DisplayList& list) {
                  list.items[0] = card({-10, 1, 500, 50}, 0.2);
              },
              {0, 0, 160, 62}},
             {"one more",
              [&](DisplayList& list) { list.items.insert(list.items.begin() + 2, symbol); },
              {80, 80, 60, 64}},
             {"one less",
              [](DisplayList& list) { list.items.erase(list.items.begin() + 1); },
              {15, 15, 40, 20}},
             {"one becomes another", [&](DisplayList& list) { list.items[1] = symbol; }, {15, 15, 125, 129}},
             {"the clip", [](DisplayList& list) { std::get<BeginClip>(list.items[2]).frame.x = 1; }, whole},
             {"a clip less",
              [](DisplayList& list) { list.items.erase(list.items.begin() + 2, list.items.end()); },
              whole},
             {"the background", [](DisplayList& list) { list.background.reset(); }, whole}}) {
        DisplayList after = picture();
        change.make(after);
        EXPECT_EQ(changedArea(picture(), after), change.area) << change.what;
        EXPECT_EQ(changedArea(after, picture()), change.area) << change.what;
    }
}

TEST(ChangedArea, IsAllWhereSizesDifferOrSomethingIsTurned) {
    DisplayList larger = picture();
    larger.size = {344, 160};
    EXPECT_EQ(changedArea(picture(), larger), (Rect{0, 0, 344, 160}));

    DisplayList turned = picture();
    turned.items.insert(turned.items.begin(), BeginRotation{{80, 80}, 45});
    turned.items.emplace_back(End{});
    DisplayList after = turned;
    EXPECT_EQ(changedArea(turned, after), Rect{});
    after.items[2] = text("?", {20, 20, 30, 10});
    EXPECT_EQ(changedArea(turned, after), (Rect{0, 0, 160, 160}));
}

}  // namespace
}  // namespace zelto::layout
