#include <gtest/gtest.h>

#include "desktop/Walking.hpp"
#include "tests/desktop/PlacedWidgets.hpp"

namespace zelto::desktop {
namespace {

/// All eleven on the first monitor, and a twelfth on the second.
std::vector<host::ArrangedWidget> arranged() {
    std::vector<host::ArrangedWidget> out;
    for (const auto& each : test::eleven()) out.push_back({each, {0, each.cell()}});
    const auto other = test::widget("Other", widgetkit::WidgetFamily::systemSmall, 0, 0);
    out.push_back({other, {1, other.cell()}});
    return out;
}

TEST(Walking, GoesRoundAsTheyAreRead) {
    const auto widgets = arranged();
    std::vector<std::string> seen;
    std::string id = "nobody";
    for (std::size_t i = 0; i < widgets.size(); ++i) {
        id = stepFrom(id, Step::next, widgets).value();
        seen.push_back(id);
    }
    EXPECT_EQ(
        seen,
        (std::vector<std::string>{
            "ZeltoWidget",
            "ZeltoBattery",
            "ZeltoSystem",
            "ZeltoStorage",
            "ZeltoFans",
            "ZeltoCalendar",
            "ZeltoWorldClock",
            "ZeltoClipboard",
            "ZeltoEqualizer",
            "ZeltoAwake",
            "ZeltoCare",
            "Other"}));
    EXPECT_EQ(stepFrom("Other", Step::next, widgets), "ZeltoWidget");
    EXPECT_EQ(stepFrom("ZeltoWidget", Step::previous, widgets), "Other");
    EXPECT_EQ(stepFrom("nobody", Step::previous, widgets), "Other");
    EXPECT_EQ(stepFrom("ZeltoWidget", Step::next, {}), std::nullopt);
    EXPECT_EQ(stepFrom("ZeltoWidget", Step::next, {widgets[0]}), "ZeltoWidget");
}

TEST(Walking, GoesToTheNearestOnASide) {
    const auto widgets = arranged();
    struct Case {
        const char* from;
        Step step;
        std::optional<std::string> to;
    };
    for (const Case& each : std::initializer_list<Case>{
             {"ZeltoWidget", Step::right, "ZeltoBattery"},
             {"ZeltoBattery", Step::left, "ZeltoWidget"},
             {"ZeltoSystem", Step::down, "ZeltoWorldClock"},
             {"ZeltoWorldClock", Step::down, "ZeltoAwake"},
             {"ZeltoAwake", Step::up, "ZeltoWorldClock"},
             {"ZeltoCalendar", Step::down, "ZeltoCare"},
             {"ZeltoEqualizer", Step::up, "ZeltoFans"},
             {"ZeltoFans", Step::right, std::nullopt},
             {"ZeltoWidget", Step::up, std::nullopt},
             {"Other", Step::left, std::nullopt},
             {"nobody", Step::left, std::nullopt}})
        EXPECT_EQ(stepFrom(each.from, each.step, widgets), each.to) << each.from;
}

}  // namespace
}  // namespace zelto::desktop
