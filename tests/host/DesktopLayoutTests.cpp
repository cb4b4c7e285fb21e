#include <gtest/gtest.h>

#include "host/DesktopLayout.hpp"

namespace zelto::host {

using namespace widgetkit;
namespace {

using enum WidgetFamily;

PlacedWidget widget(
    const std::string& id, WidgetFamily family, Cell cell, std::optional<std::string> monitor = {}) {
    return {
        .id = id,
        .kind = "K",
        .family = family,
        .monitor = std::move(monitor),
        .column = cell.column,
        .row = cell.row};
}

/// "a 0:2,1" for a widget on the first monitor's third column and second row.
std::string arranged(const std::vector<PlacedWidget>& widgets, const Monitors& monitors) {
    std::string out;
    for (const auto& [widget, slot] : DesktopLayout{widgets}.arranged(monitors))
        out += (out.empty() ? "" : " | ") + widget.id + " " + std::to_string(slot.monitor) + ":" +
               std::to_string(slot.cell.column) + "," + std::to_string(slot.cell.row);
    return out;
}

/// Where a layout's widgets belong, or why there is none: "a 2,1 | b DP-1:0,0".
std::string belonging(const Result<DesktopLayout>& layout) {
    if (!layout) return layout.fault().text();
    std::string out;
    for (const PlacedWidget& widget : layout->widgets)
        out += (out.empty() ? "" : " | ") + widget.id + " " +
               (widget.monitor ? *widget.monitor + ":" : std::string()) + std::to_string(widget.column) +
               "," + std::to_string(widget.row);
    return out;
}

const Monitors two{{"A", 4, 3}, {"B", 6, 3}};

TEST(DesktopLayout, LeavesWidgetsWhereTheyWerePlaced) {
    EXPECT_EQ(
        arranged(
            {widget("a", systemSmall, {3, 2}),
             widget("b", systemLarge, {0, 0}),
             widget("c", systemMedium, {1, 3}, "B")},
            {{"A", 7, 4}, {"B", 4, 4}}),
        "a 0:3,2 | b 0:0,0 | c 1:1,3");
}

TEST(DesktopLayout, AMissingMonitorsWidgetsFindRoomOnTheFirstOne) {
    EXPECT_EQ(
        arranged(
            {widget("a", systemMedium, {0, 0}, "gone"),
             widget("b", systemSmall, {0, 0}),
             widget("c", systemSmall, {2, 0})},
            {{"A", 4, 4}}),
        "a 0:0,1 | b 0:0,0 | c 0:2,0");
}

TEST(DesktopLayout, AMissingMonitorsWidgetsKeepTheirTilesWhereTheyCan) {
    EXPECT_EQ(
        arranged({widget("a", systemSmall, {1, 1}, "gone"), widget("b", systemSmall, {0, 0})}, {{"A", 4, 4}}),
        "a 0:1,1 | b 0:0,0");
}

TEST(DesktopLayout, OnASmallerMonitorWhatIsTooFarOutFindsRoom) {
    EXPECT_EQ(
        arranged(
            {widget("a", systemSmall, {4, 0}),
             widget("b", systemMedium, {5, 0}),
             widget("c", systemSmall, {0, 9})},
            {{"A", 6, 2}}),
        "a 0:4,0 | b 0:0,0 | c 0:2,0");
}

TEST(DesktopLayout, WhatHasNoRoomIsNotLaidOnOthers) {
    EXPECT_EQ(
        arranged(
            {widget("a", systemLarge, {0, 0}),
             widget("b", systemSmall, {9, 9}),
             widget("c", systemLarge, {5, 5})},
            {{"A", 2, 2}}),
        "a 0:0,0");
    // A desk narrower than the widget.
    EXPECT_EQ(arranged({widget("a", systemMedium, {0, 0})}, {{"A", 1, 1}}), "");
}

TEST(DesktopLayout, TwoWidgetsOnOnePlaceAreSetApart) {
    EXPECT_EQ(
        arranged({widget("a", systemSmall, {1, 1}), widget("b", systemSmall, {1, 1})}, {{"A", 4, 4}}),
        "a 0:1,1 | b 0:0,0");
}

TEST(DesktopLayout, IsEmptyWithoutMonitors) {
    EXPECT_EQ(arranged({widget("a", systemSmall, {1, 1})}, {}), "");
}

TEST(DesktopLayout, AddsWhereThereIsRoomOnTheFirstMonitor) {
    const DesktopLayout layout{{widget("a", systemSmall, {0, 0}), widget("b", systemSmall, {1, 0}, "B")}};
    EXPECT_EQ(belonging(layout.added("c", "K", systemSmall, {}, two)), "a 0,0 | b B:1,0 | c 1,0");
    EXPECT_EQ(
        belonging(layout.added("c", "K", systemMedium, {.cell = Cell{2, 1}}, two)),
        "a 0,0 | b B:1,0 | c 2,1");
    // Taken, and over the edge.
    EXPECT_EQ(
        belonging(layout.added("c", "K", systemSmall, {.cell = Cell{0, 0}}, two)), "a 0,0 | b B:1,0 | c 1,0");
    EXPECT_EQ(
        belonging(layout.added("c", "K", systemMedium, {.cell = Cell{3, 0}}, two)),
        "a 0,0 | b B:1,0 | c 1,0");
    EXPECT_EQ(belonging(layout.added("c", "\xFF", systemSmall, {}, two)), "a kind that is not UTF-8");
    EXPECT_EQ(
        belonging(layout.added("c", "K", systemSmall, {.monitor = "B"}, two)), "a 0,0 | b B:1,0 | c B:0,0");
    EXPECT_EQ(belonging(layout.added("c", "K", systemSmall, {.monitor = "gone"}, two)), "no monitor 'gone'");
    // A full monitor's successor, if none is named.
    const Monitors full{{"A", 1, 1}, {"B", 3, 1}};
    EXPECT_EQ(belonging(layout.added("c", "K", systemSmall, {}, full)), "a 0,0 | b B:1,0 | c B:0,0");
    EXPECT_EQ(belonging(layout.added("c", "K", systemMedium, {}, full)), "there is no room for it");
    EXPECT_EQ(
        belonging(layout.added("c", "K", systemSmall, {.monitor = "A"}, full)), "there is no room for it");
    // Without monitors one column is counted on.
    EXPECT_EQ(belonging(layout.added("c", "K", systemSmall, {}, {})), "a 0,0 | b B:1,0 | c 0,1");
}

TEST(DesktopLayout, MovesToFreePlacesOfAnyMonitor) {
    const DesktopLayout layout{{widget("a", systemSmall, {0, 0}), widget("b", systemSmall, {1, 0}, "A")}};
    EXPECT_EQ(belonging(layout.moved("a", std::nullopt, {3, 2}, two)), "a 3,2 | b A:1,0");
    EXPECT_EQ(belonging(layout.moved("a", "B", {1, 0}, two)), "a B:1,0 | b A:1,0");
    EXPECT_EQ(belonging(layout.moved("a", "gone", {1, 0}, two)), "a gone:1,0 | b A:1,0");
    // The first monitor is one with and without its name.
    EXPECT_EQ(belonging(layout.moved("a", std::nullopt, {1, 0}, two)), "another widget stands there");
    EXPECT_EQ(belonging(layout.moved("b", std::nullopt, {0, 0}, two)), "another widget stands there");
    EXPECT_EQ(belonging(layout.moved("a", std::nullopt, {-5, 5000}, two)), "a 0,1000 | b A:1,0");
    EXPECT_EQ(belonging(layout.moved("x", std::nullopt, {}, two)), "no placed widget 'x'");
}

TEST(DesktopLayout, ASlotOnTheFirstMonitorIsNamedOnlyForAWidgetThatWasSentThereByName) {
    const DesktopLayout layout{{widget("a", systemSmall, {0, 0}), widget("b", systemSmall, {1, 0}, "A")}};
    EXPECT_EQ(belonging(layout.moved("a", {.monitor = 0, .cell = {2, 0}}, two)), "a 2,0 | b A:1,0");
    EXPECT_EQ(belonging(layout.moved("b", {.monitor = 0, .cell = {2, 0}}, two)), "a 0,0 | b A:2,0");
    EXPECT_EQ(belonging(layout.moved("a", {.monitor = 1, .cell = {2, 0}}, two)), "a B:2,0 | b A:1,0");
    EXPECT_EQ(belonging(layout.moved("a", {.monitor = 2, .cell = {}}, two)), "there is no such monitor");
    EXPECT_EQ(belonging(layout.moved("x", Slot{}, two)), "no placed widget 'x'");
}

TEST(DesktopLayout, WhatStandsInTheWayChangesPlaces) {
    const DesktopLayout layout{
        {widget("a", systemSmall, {0, 0}),
         widget("b", systemSmall, {1, 0}),
         widget("c", systemMedium, {0, 1}),
         widget("d", systemSmall, {3, 2}, "B")}};
    const auto moved = [&](const std::string& id, Slot slot) {
        return belonging(layout.moved(id, slot, two));
    };
    EXPECT_EQ(moved("a", {0, {1, 0}}), "a 1,0 | b 0,0 | c 0,1 | d B:3,2");
    EXPECT_EQ(moved("a", {1, {3, 2}}), "a B:3,2 | b 1,0 | c 0,1 | d 0,0");
    // One that would cover two, or whose own place is too small for the other, or over the edge.
    EXPECT_EQ(moved("c", {0, {0, 0}}), "another widget stands there");
    EXPECT_EQ(moved("a", {0, {0, 1}}), "another widget stands there");
    EXPECT_EQ(moved("c", {1, {3, 2}}), "a 0,0 | b 1,0 | c B:3,2 | d 0,1");
    EXPECT_EQ(belonging(layout.moved("a", std::nullopt, {1, 0}, two)), "another widget stands there");
}

TEST(DesktopLayout, AnotherMonitorsNearestGapIsTaken) {
    const DesktopLayout layout{
        {widget("a", systemSmall, {3, 1}),
         widget("b", systemSmall, {0, 1}, "B"),
         widget("c", systemLarge, {0, 0})}};
    const auto sent = [&](const std::string& id, std::size_t monitor, Cell near) {
        return belonging(layout.sent(id, monitor, near, two));
    };
    EXPECT_EQ(sent("a", 1, {5, 2}), "a B:5,2 | b B:0,1 | c 0,0");
    EXPECT_EQ(sent("a", 1, {0, 1}), "a B:0,0 | b B:0,1 | c 0,0");
    EXPECT_EQ(sent("b", 0, {9, 9}), "a 3,1 | b 3,2 | c 0,0");
    EXPECT_EQ(sent("a", 2, {}), "there is no such monitor");
    EXPECT_EQ(belonging(layout.sent("c", 1, {}, {{"A", 4, 3}, {"B", 1, 3}})), "there is no room for it");
}

TEST(DesktopLayout, WhatWasRemovedComesBackWhereItWas) {
    const DesktopLayout layout{{widget("a", systemSmall, {0, 0}), widget("c", systemSmall, {2, 0})}};
    EXPECT_EQ(belonging(layout.restored(widget("b", systemSmall, {1, 0}), 1, two)), "a 0,0 | b 1,0 | c 2,0");
    EXPECT_EQ(belonging(layout.restored(widget("b", systemSmall, {2, 0}), 9, two)), "a 0,0 | c 2,0 | b 1,0");
}

TEST(DesktopLayout, AWidgetThatGrowsMovesWhereItCannotStay) {
    const DesktopLayout layout{
        {widget("a", systemSmall, {0, 0}),
         widget("b", systemSmall, {1, 0}),
         widget("c", systemSmall, {3, 1}),
         widget("d", systemSmall, {3, 1}, "B")}};
    EXPECT_EQ(belonging(layout.resized("a", systemMedium, two)), "a 2,0 | b 1,0 | c 3,1 | d B:3,1");
    EXPECT_EQ(belonging(layout.resized("c", systemMedium, two)), "a 0,0 | b 1,0 | c 2,0 | d B:3,1");
    // Its own monitor is wide enough.
    EXPECT_EQ(belonging(layout.resized("d", systemMedium, two)), "a 0,0 | b 1,0 | c 3,1 | d B:3,1");
    EXPECT_EQ(layout.resized("b", systemMedium, two)->find("b")->family, systemMedium);
    EXPECT_EQ(belonging(layout.resized("x", systemSmall, two)), "no placed widget 'x'");
    // Over the lower edge.
    const DesktopLayout low{{widget("a", systemSmall, {0, 2}), widget("b", systemSmall, {0, 9}, "gone")}};
    EXPECT_EQ(belonging(low.resized("a", systemLarge, two)), "a 0,0 | b gone:0,9");
    EXPECT_EQ(belonging(low.resized("b", systemLarge, two)), "a 0,2 | b gone:0,9");
}

TEST(DesktopLayout, RemovesWhatIsThere) {
    const DesktopLayout layout{{widget("a", systemSmall, {0, 0}), widget("b", systemSmall, {1, 0})}};
    EXPECT_EQ(belonging(layout.removed("a")), "b 1,0");
    EXPECT_EQ(belonging(layout.removed("x")), "no placed widget 'x'");
}

}  // namespace
}  // namespace zelto::host
