#include <gtest/gtest.h>

#include "host/Arrangement.hpp"

namespace zelto::host {
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

/// "a 0:2,1" for a widget on the first desk's third column and second row.
std::string arranged(const std::vector<PlacedWidget>& widgets, const std::vector<DeskTiles>& desks) {
    std::string out;
    for (const auto& [id, standing] : arrange(widgets, desks))
        out += (out.empty() ? "" : " | ") + id + " " + std::to_string(standing.desk) + ":" +
               std::to_string(standing.cell.column) + "," + std::to_string(standing.cell.row);
    return out;
}

TEST(Arrangement, LeavesWidgetsWhereTheyWerePlaced) {
    EXPECT_EQ(
        arranged(
            {widget("a", systemSmall, {3, 2}),
             widget("b", systemLarge, {0, 0}),
             widget("c", systemMedium, {1, 3}, "B")},
            {{"A", 7, 4}, {"B", 4, 4}}),
        "a 0:3,2 | b 0:0,0 | c 1:1,3");
}

TEST(Arrangement, AMissingMonitorsWidgetsFindRoomOnTheFirstOne) {
    EXPECT_EQ(
        arranged(
            {widget("a", systemMedium, {0, 0}, "gone"),
             widget("b", systemSmall, {0, 0}),
             widget("c", systemSmall, {2, 0})},
            {{"A", 4, 4}}),
        "a 0:0,1 | b 0:0,0 | c 0:2,0");
}

TEST(Arrangement, AMissingMonitorsWidgetsKeepTheirTilesWhereTheyCan) {
    EXPECT_EQ(
        arranged({widget("a", systemSmall, {1, 1}, "gone"), widget("b", systemSmall, {0, 0})}, {{"A", 4, 4}}),
        "a 0:1,1 | b 0:0,0");
}

TEST(Arrangement, OnASmallerMonitorWhatIsTooFarOutFindsRoom) {
    EXPECT_EQ(
        arranged(
            {widget("a", systemSmall, {4, 0}),
             widget("b", systemMedium, {5, 0}),
             widget("c", systemSmall, {0, 9})},
            {{"A", 6, 2}}),
        "a 0:4,0 | b 0:0,0 | c 0:2,0");
}

TEST(Arrangement, WithoutRoomAWidgetStaysOnTheDesk) {
    EXPECT_EQ(
        arranged(
            {widget("a", systemLarge, {0, 0}),
             widget("b", systemSmall, {9, 9}),
             widget("c", systemLarge, {5, 5})},
            {{"A", 2, 2}}),
        "a 0:0,0 | b 0:1,1 | c 0:0,0");
    // A desk narrower than the widget.
    EXPECT_EQ(arranged({widget("a", systemMedium, {0, 0})}, {{"A", 1, 1}}), "a 0:0,0");
}

TEST(Arrangement, TwoWidgetsOnOnePlaceAreSetApart) {
    EXPECT_EQ(
        arranged({widget("a", systemSmall, {1, 1}), widget("b", systemSmall, {1, 1})}, {{"A", 4, 4}}),
        "a 0:1,1 | b 0:0,0");
}

TEST(Arrangement, IsEmptyWithoutMonitors) {
    EXPECT_EQ(arranged({widget("a", systemSmall, {1, 1})}, {}), "");
}

}  // namespace
}  // namespace zelto::host
