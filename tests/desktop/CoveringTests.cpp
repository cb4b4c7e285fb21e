#include <gtest/gtest.h>

#include "desktop/Covering.hpp"

namespace zelto::desktop {
namespace {

TEST(Covering, HidesWhatNothingIsLeftOf) {
    const ScreenArea area{10, 10, 100, 100}, half{10, 10, 50, 100}, other{60, 10, 50, 100};
    struct Case {
        const char* what;
        std::vector<OtherWindow> stacked;
        bool isHidden;
    };
    for (const Case& each : std::vector<Case>{
             {"nothing", {}, false},
             {"itself", {{1, {area}}}, false},
             {"one above", {{1, {}}, {2, {{0, 0, 500, 500}}}}, true},
             {"just as large", {{1, {}}, {2, {area}}}, true},
             {"a pixel less", {{1, {}}, {2, {{10, 10, 100, 99}}}}, false},
             {"one below", {{2, {area}}, {1, {}}}, false},
             {"two halves", {{1, {}}, {2, {half}}, {3, {other}}}, true},
             {"two halves of one", {{1, {}}, {2, {half, other}}}, true},
             {"one half above and one below", {{2, {half}}, {1, {}}, {3, {other}}}, false},
             {"one that is not on the screen", {{1, {}}, {2, {}}}, false},
             {"unknown to the window manager", {{2, {area}}}, true}})
        EXPECT_EQ(isHidden(area, 1, each.stacked), each.isHidden) << each.what;
}

}  // namespace
}  // namespace zelto::desktop
