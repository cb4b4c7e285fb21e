#include <gtest/gtest.h>

#include "widgetkit/KindNames.hpp"

namespace zelto::widgetkit {
namespace {

TEST(KindNames, AreThoseOfPeopleToo) {
    struct Case {
        const char *kind, *name;
        bool isCalled;
    };
    for (const Case& each : std::initializer_list<Case>{
             {"ZeltoFans", "ZeltoFans", true},
             {"ZeltoFans", "fans", true},
             {"ZeltoFans", "FANS", true},
             {"ZeltoWorldClock", "worldClock", true},
             {"ZeltoWidget", "overview", true},
             {"ZeltoWidget", "widget", true},
             {"ZeltoFans", "fan", false},
             {"Fans", "ZeltoFans", true},
             {"ZeltoFans", "", false}})
        EXPECT_EQ(isCalled(each.kind, each.name), each.isCalled) << each.kind << " " << each.name;
}

TEST(KindNames, AWidgetsOwnNameGoesFirst) {
    const std::vector<WidgetDescription> widgets{{"ZeltoFans", "a", "", {}}, {"fans", "b", "", {}}};
    EXPECT_EQ(findWidget(widgets, "fans")->displayName, "b");
    EXPECT_EQ(findWidget(widgets, "Fans")->displayName, "a");
    EXPECT_EQ(findWidget(widgets, "frob"), nullptr);
}

}  // namespace
}  // namespace zelto::widgetkit
